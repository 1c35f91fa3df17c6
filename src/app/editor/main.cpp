#include "plist/ApplicationIdentity.h"
#include "plist/UserDefaults.h"
#include "shell/ApplicationStart.h"
#include "supply/PFMDomainManager.h"
#include "supply/ResourceFolder.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

namespace {

void printLine(std::FILE* stream, const QString& line) {
    std::fputs((line + u'\n').toUtf8().constData(), stream);
}

QString usage() {
    return QStringLiteral("Usage: quorlin-profile-editor [--help] [--version]\n"
                          "\n"
                          "Starts %1: registers the settings, brings those of an\n"
                          "earlier version up to date, loads the manifests and lists the payload\n"
                          "domains they offer, one per line: the domain (\"\" for the general\n"
                          "settings of a profile), a tab and its title.\n"
                          "\n"
                          "  -h, --help  Show this help\n"
                          "  --version   Show the version")
        .arg(quorlin::ApplicationIdentity::displayName());
}

// The general domain's string is empty; a blank field would read as a missing one.
QString domainLine(const quorlin::PFMDomain& domain) {
    const QString name = domain.domainString().isEmpty() ? QStringLiteral("\"\"") : domain.domainString();
    return name + u'\t' + domain.title();
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

    if (!quorlin::ResourceFolder::locate()) {
        printLine(stderr,
                  QStringLiteral("quorlin-profile-editor: ") + quorlin::ResourceFolder::missingMessage());
        return 1;
    }
    quorlin::ApplicationStart start(quorlin::UserDefaults::standard());
    start.run();
    for (const auto& domain : start.domainManager()->domains())
        printLine(stdout, domainLine(*domain));
    return 0;
}
