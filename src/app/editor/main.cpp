#include "plist/ApplicationIdentity.h"
#include "plist/UserDefaults.h"
#include "shell/ApplicationStart.h"
#include "supply/PFMDomainManager.h"
#include "supply/ResourceFolder.h"
#include "ui/DesktopIdentity.h"
#include "ui/EditorApplication.h"
#include "ui/FirstWindowExit.h"

#include <QApplication>
#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

namespace {

const QString listDomainsOption = QStringLiteral("--list-domains");

void printLine(std::FILE* stream, const QString& line) {
    std::fputs((line + u'\n').toUtf8().constData(), stream);
}

QString usage() {
    return QStringLiteral("Usage: quorlin-profile-editor [--help] [--version] [--list-domains] [FILE...]\n"
                          "\n"
                          "Opens %1 with a window for each configuration profile\n"
                          "FILE given, or with one empty profile.\n"
                          "\n"
                          "  -h, --help      Show this help\n"
                          "  --version       Show the version\n"
                          "  --list-domains  Start without a window: register the settings, bring those\n"
                          "                  of an earlier version up to date, load the manifests and\n"
                          "                  list the payload domains they offer, one per line: the\n"
                          "                  domain (\"\" for the general settings of a profile), a tab\n"
                          "                  and its title")
        .arg(quorlin::ApplicationIdentity::displayName());
}

// The general domain's string is empty; a blank field would read as a missing one.
QString domainLine(const quorlin::PFMDomain& domain) {
    const QString name = domain.domainString().isEmpty() ? QStringLiteral("\"\"") : domain.domainString();
    return name + u'\t' + domain.title();
}

bool locateResources() {
    if (quorlin::ResourceFolder::locate())
        return true;
    printLine(stderr, QStringLiteral("quorlin-profile-editor: ") + quorlin::ResourceFolder::missingMessage());
    return false;
}

// Answers that need no window, so they work where there is no display.
int runWithoutWindow(const QStringList& arguments) {
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        printLine(stdout, usage());
        return 0;
    }
    if (arguments.contains(QStringLiteral("--version"))) {
        printLine(stdout, QStringLiteral("%1 %2").arg(quorlin::ApplicationIdentity::displayName(),
                                                      quorlin::ApplicationIdentity::shortVersionString()));
        return 0;
    }
    for (const QString& argument : arguments) {
        if (argument.startsWith(u'-') && argument != listDomainsOption) {
            printLine(stderr, QStringLiteral("quorlin-profile-editor: unknown argument '%1'").arg(argument));
            printLine(stderr, usage());
            return 2;
        }
    }
    if (!locateResources())
        return 1;
    quorlin::ApplicationStart start(quorlin::UserDefaults::standard());
    start.run();
    for (const auto& domain : start.domainManager()->domains())
        printLine(stdout, domainLine(*domain));
    return 0;
}

bool needsNoWindow(int argc, char** argv) {
    for (int index = 1; index < argc; ++index) {
        if (argv[index][0] == '-')
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    quorlin::ApplicationIdentity::apply();
    if (needsNoWindow(argc, argv)) {
        QCoreApplication application(argc, argv);
        return runWithoutWindow(QCoreApplication::arguments().mid(1));
    }

    {
        // Before the display is reached, so the message stands alone when the program can't work.
        QCoreApplication probe(argc, argv);
        if (!locateResources())
            return 1;
    }
    QApplication application(argc, argv);
    quorlin::DesktopIdentity::apply();
    if (const auto delay = quorlin::FirstWindowExit::delayFromEnvironment())
        new quorlin::FirstWindowExit(*delay, &application);
    quorlin::EditorApplication editor(quorlin::UserDefaults::standard());
    editor.launch(QCoreApplication::arguments().mid(1));
    return application.exec();
}
