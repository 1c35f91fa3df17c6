#pragma once

#include <QString>

#include <optional>

namespace quorlin {

// Where the stores of the manifest repositories live on disk, and the rules
// that keep a repository's address or branch from placing a store anywhere
// else. Every directory handed out lies strictly inside its root; what would
// not is refused.
class RepositoryStorePaths {
public:
    // The application data folder; the factory reset removes it whole.
    static QString applicationDataFolder();
    // <application data>/manifest-repositories
    static QString storeRoot();
    // <store root>/github and <store root>/local; nothing when the platform
    // names no application data folder.
    static std::optional<QString> gitHubStorageRoot();
    static std::optional<QString> localStorageRoot();

    // <github root>/<owner>/<repository>/<branch>, with one level per
    // component of a branch such as "release/1.0".
    static std::optional<QString> storageDirectoryForRepositoryAddress(const QString& address,
                                                                       const QString& branch);
    // <local root>/<lowercase hex SHA-1 of the folder's UTF-8 path>
    static std::optional<QString> storageDirectoryForLocalFolder(const QString& folderPath);

    // An http(s) address on the GitHub web host, with or without "www.",
    // whose path names exactly an owner and a repository.
    static bool addressIsValid(const QString& address);
    // The reference-name rules of git, as far as a folder name needs them.
    static bool branchIsValid(const QString& branch);

    // Whether the cleaned path lies below the root (the root itself is not).
    static bool isInside(const QString& path, const QString& root);

private:
    static std::optional<QString> confinedBelow(const QString& root, const QString& relativePath);
};

} // namespace quorlin
