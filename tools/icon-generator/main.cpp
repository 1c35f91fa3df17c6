#include "IconDesign.h"
#include "IconRenderer.h"
#include "PayloadIconDesign.h"
#include "SvgDocument.h"
#include "workspace/PayloadIconTable.h"

#include <QDir>
#include <QFile>
#include <QString>

#include <cstdio>

namespace {

const QString iconName = QStringLiteral("com.quorlin.ProfileEditor");
constexpr int themeSizes[] = {16, 32, 48, 64, 128, 256};

bool writePng(const QDir& theme, int size) {
    const QString folder = QStringLiteral("hicolor/%1x%1/apps").arg(size);
    if (!theme.mkpath(folder))
        return false;
    const QImage image = quorlin::icons::IconRenderer::render(quorlin::icons::IconDesign::layers(), size);
    return image.save(theme.filePath(folder + u'/' + iconName + QStringLiteral(".png")), "PNG");
}

bool writeSvg(const QDir& theme) {
    const QString folder = QStringLiteral("hicolor/scalable/apps");
    if (!theme.mkpath(folder))
        return false;
    QFile file(theme.filePath(folder + u'/' + iconName + QStringLiteral(".svg")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray bytes =
        quorlin::icons::SvgDocument::write(quorlin::icons::IconDesign::layers()).toUtf8();
    return file.write(bytes) == bytes.size();
}

// The side-bar draws its icons at 28 points: sharp at scales 1, 2 and 3.
constexpr int payloadSizes[] = {28, 56, 84};

bool writePayloadIcon(const QDir& folder, const quorlin::PayloadIconTable::Icon& icon, bool dark) {
    using quorlin::icons::PayloadIconDesign;
    const QString name = icon.name() + (dark ? QStringLiteral("-dark") : QString());
    const auto layers = PayloadIconDesign::layers(icon.family, icon.glyph, dark);
    for (int size : payloadSizes) {
        const QImage image = quorlin::icons::IconRenderer::render(layers, size);
        if (!image.save(folder.filePath(QStringLiteral("%1-%2.png").arg(name).arg(size)), "PNG"))
            return false;
    }
    QFile file(folder.filePath(name + QStringLiteral(".svg")));
    const QByteArray bytes = quorlin::icons::SvgDocument::write(layers, icon.name()).toUtf8();
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

int writePayloadIcons(const QDir& folder) {
    if (!folder.mkpath(QStringLiteral(".")))
        return 1;
    for (const auto& icon : quorlin::PayloadIconTable::allIcons()) {
        if (!quorlin::icons::PayloadIconDesign::hasGlyph(icon.glyph)) {
            std::fprintf(stderr, "quorlin-icon-generator: no glyph \"%s\"\n", qPrintable(icon.glyph));
            return 1;
        }
        if (!writePayloadIcon(folder, icon, false) || !writePayloadIcon(folder, icon, true)) {
            std::fprintf(stderr, "quorlin-icon-generator: can't write %s\n", qPrintable(icon.name()));
            return 1;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && QString::fromLocal8Bit(argv[1]) == QStringLiteral("--payload-icons"))
        return writePayloadIcons(QDir(QString::fromLocal8Bit(argv[2])));
    if (argc != 2) {
        std::fputs("Usage: quorlin-icon-generator OUTPUT_FOLDER\n"
                   "       quorlin-icon-generator --payload-icons OUTPUT_FOLDER\n"
                   "Writes OUTPUT_FOLDER/hicolor/<size>/apps/com.quorlin.ProfileEditor.{png,svg},\n"
                   "or the side-bar's payload icons, light and dark, as SVG and PNG.\n",
                   stderr);
        return 2;
    }
    const QDir theme(QString::fromLocal8Bit(argv[1]));
    for (int size : themeSizes) {
        if (!writePng(theme, size)) {
            std::fprintf(stderr, "quorlin-icon-generator: can't write the %d px icon\n", size);
            return 1;
        }
    }
    if (!writeSvg(theme)) {
        std::fputs("quorlin-icon-generator: can't write the scalable icon\n", stderr);
        return 1;
    }
    return 0;
}
