#include "plist/ApplicationIdentity.h"
#include "plist/UserDefaults.h"
#include "shell/ApplicationStart.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

namespace {

void printLine(std::FILE* stream, const QString& line) {
    std::fputs(qPrintable(line + u'\n'), stream);
}

QString usage() {
    return QStringLiteral("Usage: quorlin-profile-editor [--help] [--version]\n"
                          "\n"
                          "Starts %1: registers the settings, brings those of an\n"
                          "earlier version up to date, and prepares the manifests.\n"
                          "\n"
                          "  -h, --help  Show this help\n"
                          "  --version   Show the version")
        .arg(quorlin::ApplicationIdentity::displayName());
}

} // namespace

int main(int argc, char** argv) {
    quorlin::ApplicationIdentity::apply();
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);

    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        printLine(stdout, usage());
        return 0;
    }
    if (arguments.contains(QStringLiteral("--version"))) {
        printLine(stdout, QStringLiteral("%1 %2").arg(quorlin::ApplicationIdentity::displayName(),
                                                      quorlin::ApplicationIdentity::shortVersionString()));
        return 0;
    }
    if (!arguments.isEmpty()) {
        printLine(stderr,
                  QStringLiteral("quorlin-profile-editor: unknown argument '%1'").arg(arguments.first()));
        printLine(stderr, usage());
        return 2;
    }

    quorlin::ApplicationStart(quorlin::UserDefaults::standard()).run();
    printLine(stdout, QStringLiteral("%1 %2: start completed")
                          .arg(quorlin::ApplicationIdentity::displayName(),
                               quorlin::ApplicationIdentity::shortVersionString()));
    return 0;
}
