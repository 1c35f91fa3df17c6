#include "cli/CommandLineTool.h"
#include "plist/ApplicationIdentity.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    quorlin::ApplicationIdentity::apply();
    QCoreApplication application(argc, argv);
    return quorlin::cli::CommandLineTool::runWithStandardStreams(QCoreApplication::arguments().mid(1));
}
