#include "EditorTestSupport.h"

#include "ui/IssuesPanel.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"

#include <QAction>
#include <QDir>
#include <QPainter>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

// Pictures of a window for the README: the dock profile with two faulty
// sizes, the issues panel open. Written to <build>/screenshots.
class Screenshots : public EditorFixture {
protected:
    QImage shoot(DocumentWindow& window, QSize size, qreal scale) {
        window.resize(size);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QTest::qWait(50);
        QImage image(size * scale, QImage::Format_ARGB32);
        image.setDevicePixelRatio(scale);
        image.fill(window.palette().color(QPalette::Window));
        QPainter painter(&image);
        window.render(&painter);
        painter.end();
        return image;
    }
};

TEST_F(Screenshots, WindowAtTwoSizesAndScales) {
    DocumentWindow* window = openShown(QStringLiteral("dock.mobileconfig"));
    ASSERT_TRUE(window);
    PFMSection* dock = sectionTitled(*window, QStringLiteral("Dock"));
    ASSERT_TRUE(dock && dock->sectionViewController());
    const auto& form = *dock->sectionViewController()->payloadControllers().front();
    for (const char* name : {"tilesize", "largesize"})
        window->history().setValue(form.payload()->keyAtPath(QString::fromLatin1(name)), plist::Value(500));
    window->issuesPanel()->toggleViewAction()->trigger();
    window->selectSection(dock);
    window->nextErrorAction()->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window->issuesPanel()->issues().size() == 2; }, 2000));

    const QDir folder(QStringLiteral(QUORLIN_BINARY_DIR "/screenshots"));
    ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
    struct Shot {
        QSize size;
        qreal scale;
        const char* file;
    };
    for (const Shot& shot :
         {Shot{{1024, 700}, 1, "window-1024x700.png"}, Shot{{1920, 1200}, 2, "window-1920x1200@2x.png"}}) {
        const QImage image = shoot(*window, shot.size, shot.scale);
        EXPECT_EQ(image.size(), shot.size * shot.scale);
        EXPECT_TRUE(image.save(folder.filePath(QString::fromLatin1(shot.file)))) << shot.file;
    }
}

} // namespace
} // namespace quorlin
