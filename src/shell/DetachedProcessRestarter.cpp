#include "shell/DetachedProcessRestarter.h"

#include <QCoreApplication>
#include <QProcess>

namespace quorlin {

void DetachedProcessRestarter::restart() {
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    QProcess::startDetached(QCoreApplication::applicationFilePath(), arguments);
    QCoreApplication::quit();
}

} // namespace quorlin
