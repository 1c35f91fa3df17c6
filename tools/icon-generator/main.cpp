#include "IconDesign.h"
#include "IconRenderer.h"
#include "SvgDocument.h"

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

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("Usage: quorlin-icon-generator OUTPUT_FOLDER\n"
                   "Writes OUTPUT_FOLDER/hicolor/<size>/apps/com.quorlin.ProfileEditor.{png,svg}.\n",
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
