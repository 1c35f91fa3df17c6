#include "schema/SchemaTrees.h"
#include "support/TestSupport.h"
#include "ui/SectionListModel.h"
#include "workspace/SectionArrayController.h"

#include <QApplication>
#include <QBuffer>
#include <QIcon>
#include <QImage>
#include <QPalette>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

QByteArray pngOf(const QColor& colour) {
    QImage image(32, 32, QImage::Format_ARGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

std::shared_ptr<const PFMDomain> domain(const QString& name, plist::Dictionary extra = {}) {
    extra.insert(QStringLiteral("pfm_title"), name);
    return PFMDomain::make(manifestTree(name, {}, extra));
}

// Side-bar rows of Wi-Fi, Dock, a manifest with its own icon and an unfamiliar payload.
class PayloadIcons : public ::testing::Test {
protected:
    PayloadIcons() {
        sections.push_back(std::make_unique<PFMSection>(domain(QStringLiteral("com.apple.wifi.managed"))));
        sections.push_back(std::make_unique<PFMSection>(domain(QStringLiteral("com.apple.dock"))));
        sections.push_back(std::make_unique<PFMSection>(domain(
            QStringLiteral("com.example.own"), {{QStringLiteral("pfm_quorlin_icon"), pngOf(Qt::red)}})));
        sections.push_back(PFMSection::makeUnfamiliar(
            plist::Dictionary{{QStringLiteral("PayloadType"), QStringLiteral("com.example.nobody")}}));
        QList<PFMSection*> pointers;
        for (const auto& section : sections)
            pointers.append(section.get());
        list.setContent(pointers);
    }

    QImage image(SectionListModel& model, const QString& domainName, qreal scale = 1) const {
        for (int row = 0; row < model.rowCount(); ++row) {
            if (model.sectionAt(row)->domains().contains(domainName))
                return model.index(row)
                    .data(Qt::DecorationRole)
                    .value<QIcon>()
                    .pixmap(QSize(28, 28), scale)
                    .toImage();
        }
        return {};
    }

    std::vector<std::unique_ptr<PFMSection>> sections;
    SectionArrayController list;
    ResourceFolder resources{QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor")};
};

TEST_F(PayloadIcons, EachRowHasItsOwnIconSharpAtEveryScaleAndAManifestsIconIsKept) {
    SectionListModel model(list, resources);
    const QStringList domains{QStringLiteral("com.apple.wifi.managed"), QStringLiteral("com.apple.dock"),
                              QStringLiteral("com.example.own"), QStringLiteral("com.example.nobody")};
    QList<QImage> images;
    for (const QString& name : domains) {
        images.append(image(model, name));
        ASSERT_FALSE(images.last().isNull()) << name.toStdString();
    }
    for (int a = 0; a < images.size(); ++a) {
        for (int b = a + 1; b < images.size(); ++b)
            EXPECT_NE(images[a], images[b]) << a << " " << b;
    }
    EXPECT_EQ(images[2].convertToFormat(QImage::Format_ARGB32).pixelColor(14, 14), QColor(Qt::red));
    // At scale 2 the row draws a bitmap made for it, not one blown up.
    const QImage sharp = image(model, domains.first(), 2);
    EXPECT_EQ(sharp.size(), QSize(56, 56));
}

TEST_F(PayloadIcons, ADarkPaletteTakesTheDarkSet) {
    SectionListModel model(list, resources);
    const QString wifi = QStringLiteral("com.apple.wifi.managed");
    const QImage light = image(model, wifi);
    const QPalette original = QApplication::palette();
    QPalette dark = original;
    dark.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
    QApplication::setPalette(dark);
    const QImage darkImage = image(model, wifi);
    QApplication::setPalette(original);
    EXPECT_NE(light, darkImage);
    EXPECT_LT(qGray(darkImage.pixel(3 * darkImage.width() / 4, darkImage.height() / 8)),
              qGray(light.pixel(3 * light.width() / 4, light.height() / 8)));
    EXPECT_EQ(image(model, wifi), light);
}

} // namespace
} // namespace quorlin
