#pragma once

#include "apptools/AppBundle.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin::apptools {

// What the inspector shows of an application, with the label of each row.
// It can't fail: a field that can't be answered is simply empty, and its
// row is hidden.
struct AppInformationViewModel {
    // One labelled row of the view, in the order the view shows them.
    struct Row {
        QString field;
        QString qualifier;
        QString information;
    };

    explicit AppInformationViewModel(const AppBundle& appBundle);

    std::optional<QString> name;
    std::optional<QString> version;
    std::optional<QString> build;
    std::optional<QString> icon;
    std::optional<QString> bundleID;
    std::optional<QString> teamID;
    std::optional<QString> copyright;
    std::optional<QString> architectures;
    std::optional<QString> platform;
    std::optional<QString> minOSVersion;
    std::optional<QString> size;
    std::optional<QString> developerName;
    // Reserved: created empty, so their rows stay hidden.
    std::optional<bool> isSigned;
    std::optional<bool> sandboxed;
    std::optional<bool> hardened;
    std::optional<bool> notarized;
    std::optional<QString> codeRequirement;
    std::optional<QStringList> entitlements;

    // The missing "i" of some names is as the labels have always been keyed.
    QString bundleIDQualifier = QStringLiteral("Bundle ID");
    QString teamIDQualifier = QStringLiteral("Team ID");
    QString copyrightQualifier = QStringLiteral("Copyright");
    QString developerNameQualifier = QStringLiteral("Developer Name");
    QString platformQualifer = QStringLiteral("Platform");
    QString minOSVersionQualifer = QStringLiteral("Minimum OS Verion");
    QString codeRequirementQualifer = QStringLiteral("Code Requirement");
    QString sizeQualifer = QStringLiteral("Size");
    QString architecturesQualifer;

    static QString headline() { return QStringLiteral("System Characteristics"); }
    static QString missingName() { return QStringLiteral("Application not set"); }

    // "Apple Silicon 64-bit and Intel 64-bit": the architectures in a fixed
    // order whatever the file's, nothing for none.
    static std::optional<QString>
    architectureSentence(const QList<AppBundle::CPUArchitecture>& architectures);
    // "1.2 (345)", or whichever of the two there is.
    std::optional<QString> versionAndBuildNumber() const;
    // The labelled rows that have a value: bundle, team and copyright, then
    // under the headline the system characteristics, the code requirement last.
    QList<Row> identityRows() const;
    QList<Row> characteristicsRows() const;
};

} // namespace quorlin::apptools
