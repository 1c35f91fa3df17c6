#pragma once

#include <QString>

#include <optional>

namespace quorlin {

// The program's read-only resources: the bundled manifests ("Manifests"),
// the support files for manifests of other makers ("Manifest Support") and
// named images ("Images"). They lie in share/quorlin-profile-editor beside
// the folder of the executable, both in the build tree and after
// installation, so one rule finds them in either place.
class ResourceFolder {
public:
    explicit ResourceFolder(QString path);

    // The folder next to the running executable, when it holds "Manifests".
    static std::optional<ResourceFolder> locate();
    // Where locate() looks.
    static QString expectedPath();
    // Why the program can't go on without them, naming where it looked.
    static QString missingMessage();

    const QString& path() const { return m_path; }
    QString manifestsDirectory() const;
    QString manifestSupportDirectory() const;
    // The PNG file of a named image, e.g. "domainIconDefault".
    QString imagePath(const QString& name) const;

private:
    QString m_path;
};

} // namespace quorlin
