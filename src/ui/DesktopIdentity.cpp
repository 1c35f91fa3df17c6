#include "ui/DesktopIdentity.h"

#include <QApplication>
#include <QIcon>

namespace quorlin {

void DesktopIdentity::apply() {
    const QString name = QString::fromLatin1(desktopFileName);
    QGuiApplication::setDesktopFileName(name);
    // The installed theme icon; a build tree run falls back to Qt's default.
    QApplication::setWindowIcon(QIcon::fromTheme(name));
}

} // namespace quorlin
