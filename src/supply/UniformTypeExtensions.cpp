#include "supply/UniformTypeExtensions.h"

#include <QHash>

namespace quorlin {

namespace {

// Declared extensions of the types manifests name, in the order the
// platforms declare them. Abstract types ("public.data", "public.folder",
// "public.unix-executable") are declared without any extension.
const QHash<QString, QStringList>& declarations() {
    static const QHash<QString, QStringList> table = {
        // Images
        {QStringLiteral("public.jpeg"),
         {QStringLiteral("jpeg"), QStringLiteral("jpg"), QStringLiteral("jpe")}},
        {QStringLiteral("public.png"), {QStringLiteral("png")}},
        {QStringLiteral("public.tiff"), {QStringLiteral("tiff"), QStringLiteral("tif")}},
        {QStringLiteral("com.compuserve.gif"), {QStringLiteral("gif")}},
        {QStringLiteral("com.microsoft.bmp"), {QStringLiteral("bmp"), QStringLiteral("dib")}},
        {QStringLiteral("com.microsoft.ico"), {QStringLiteral("ico")}},
        {QStringLiteral("com.apple.icns"), {QStringLiteral("icns")}},
        {QStringLiteral("public.heic"), {QStringLiteral("heic")}},
        {QStringLiteral("public.heif"), {QStringLiteral("heif")}},
        {QStringLiteral("org.webmproject.webp"), {QStringLiteral("webp")}},
        {QStringLiteral("public.svg-image"), {QStringLiteral("svg")}},
        {QStringLiteral("public.jpeg-2000"),
         {QStringLiteral("jp2"), QStringLiteral("jpf"), QStringLiteral("jpx"), QStringLiteral("j2k"),
          QStringLiteral("j2c")}},
        {QStringLiteral("com.adobe.photoshop-image"), {QStringLiteral("psd")}},
        {QStringLiteral("com.adobe.illustrator.ai-image"), {QStringLiteral("ai")}},
        {QStringLiteral("com.truevision.tga-image"), {QStringLiteral("tga")}},
        {QStringLiteral("com.ilm.openexr-image"), {QStringLiteral("exr")}},
        {QStringLiteral("com.apple.pict"),
         {QStringLiteral("pict"), QStringLiteral("pct"), QStringLiteral("pic")}},
        {QStringLiteral("public.xbitmap-image"), {QStringLiteral("xbm")}},
        {QStringLiteral("com.apple.quicktime-image"), {QStringLiteral("qif"), QStringLiteral("qtif")}},
        // Text and structured text
        {QStringLiteral("public.plain-text"), {QStringLiteral("txt"), QStringLiteral("text")}},
        {QStringLiteral("public.utf8-plain-text"), {QStringLiteral("txt")}},
        {QStringLiteral("public.json"), {QStringLiteral("json")}},
        {QStringLiteral("public.xml"), {QStringLiteral("xml")}},
        {QStringLiteral("public.yaml"), {QStringLiteral("yaml"), QStringLiteral("yml")}},
        {QStringLiteral("public.html"),
         {QStringLiteral("html"), QStringLiteral("htm"), QStringLiteral("shtml"), QStringLiteral("shtm")}},
        {QStringLiteral("public.rtf"), {QStringLiteral("rtf")}},
        {QStringLiteral("public.comma-separated-values-text"), {QStringLiteral("csv")}},
        {QStringLiteral("public.log"), {QStringLiteral("log")}},
        {QStringLiteral("com.adobe.pdf"), {QStringLiteral("pdf")}},
        {QStringLiteral("com.apple.property-list"), {QStringLiteral("plist")}},
        {QStringLiteral("com.apple.mobileconfig"), {QStringLiteral("mobileconfig")}},
        // Certificates and keys
        {QStringLiteral("public.x509-certificate"),
         {QStringLiteral("cer"), QStringLiteral("crt"), QStringLiteral("der")}},
        {QStringLiteral("com.rsa.pkcs-12"), {QStringLiteral("p12"), QStringLiteral("pfx")}},
        {QStringLiteral("public.pkcs7-signature"), {QStringLiteral("p7s")}},
        {QStringLiteral("com.apple.keychain"), {QStringLiteral("keychain"), QStringLiteral("keychain-db")}},
        // Archives and installers
        {QStringLiteral("public.zip-archive"), {QStringLiteral("zip")}},
        {QStringLiteral("public.tar-archive"), {QStringLiteral("tar")}},
        {QStringLiteral("org.gnu.gnu-zip-archive"), {QStringLiteral("gz"), QStringLiteral("gzip")}},
        {QStringLiteral("com.apple.disk-image-udif"), {QStringLiteral("dmg")}},
        {QStringLiteral("com.apple.installer-package-archive"), {QStringLiteral("pkg")}},
        // Programs and scripts
        {QStringLiteral("com.apple.application-bundle"), {QStringLiteral("app")}},
        {QStringLiteral("public.shell-script"), {QStringLiteral("sh"), QStringLiteral("command")}},
        {QStringLiteral("public.python-script"), {QStringLiteral("py")}},
        {QStringLiteral("public.perl-script"), {QStringLiteral("pl"), QStringLiteral("pm")}},
        {QStringLiteral("public.ruby-script"), {QStringLiteral("rb")}},
        {QStringLiteral("com.netscape.javascript-source"), {QStringLiteral("js")}},
        {QStringLiteral("com.apple.applescript.script"), {QStringLiteral("scpt")}},
        {QStringLiteral("public.unix-executable"), {}},
        // Containers without extensions of their own
        {QStringLiteral("public.folder"), {}},
        {QStringLiteral("public.directory"), {}},
        {QStringLiteral("public.data"), {}},
        {QStringLiteral("public.item"), {}},
    };
    return table;
}

} // namespace

std::optional<QStringList> UniformTypeExtensions::extensions(const QString& typeIdentifier) {
    const auto declaration = declarations().constFind(typeIdentifier);
    if (declaration == declarations().cend())
        return std::nullopt;
    return *declaration;
}

const QStringList& UniformTypeExtensions::imageExtensions() {
    static const QStringList extensions = {
        QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("jp2"), QStringLiteral("tif"),
        QStringLiteral("tiff"), QStringLiteral("pic"),  QStringLiteral("pct"), QStringLiteral("pict"),
        QStringLiteral("pntg"), QStringLiteral("png"),  QStringLiteral("xbm"), QStringLiteral("qif"),
        QStringLiteral("qtif"), QStringLiteral("icns"), QStringLiteral("psd"), QStringLiteral("ai"),
        QStringLiteral("gif"),  QStringLiteral("bmp"),  QStringLiteral("ico"), QStringLiteral("tga"),
        QStringLiteral("sgi"),  QStringLiteral("exr"),  QStringLiteral("fpx"),
    };
    return extensions;
}

} // namespace quorlin
