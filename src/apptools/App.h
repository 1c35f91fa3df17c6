#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin::apptools {

// An application folder as the app and custom-property fields show it: its
// name, version, identifier, and a short label of its architectures.
struct App {
    struct ArchitectureLabel {
        QString architecture;
        bool isAppleSiliconReady = false;
        friend bool operator==(const ArchitectureLabel&, const ArchitectureLabel&) = default;
    };

    QString name;
    QString path;
    std::optional<QString> version;
    QStringList architectures;
    bool isAppleSiliconReady = false;
    QString architecture;
    std::optional<QString> bundleID;

    // Nothing unless the path is a folder whose executable exists.
    static std::optional<App> read(const QString& path);
    // "Universal", "Apple (iOS)", "Intel 32/64", "PowerPC" and the like.
    static ArchitectureLabel labelFor(const QStringList& architectures, bool isIOS);
};

} // namespace quorlin::apptools
