#include "plist/ApplicationIdentity.h"

#include <QCoreApplication>

namespace quorlin {

QString ApplicationIdentity::bundleIdentifier() {
    return QStringLiteral("com.quorlin.ProfileEditor");
}

QString ApplicationIdentity::displayName() {
    return QStringLiteral("Quorlin Profile Editor");
}

QString ApplicationIdentity::applicationName() {
    return QStringLiteral("quorlin-profile-editor");
}

QString ApplicationIdentity::shortVersionString() {
    return QStringLiteral(QUORLIN_VERSION);
}

void ApplicationIdentity::apply() {
    QCoreApplication::setApplicationName(applicationName());
    QCoreApplication::setApplicationVersion(shortVersionString());
}

} // namespace quorlin
