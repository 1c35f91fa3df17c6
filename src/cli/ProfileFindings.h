#pragma once

#include "cli/ProfileOpener.h"
#include "validation/ValidationSettings.h"

#include <QJsonObject>
#include <QList>
#include <QString>

namespace quorlin::cli {

// What a check finds wrong in one opened profile: every field fault in the
// words the editor's form shows, payload identifiers that repeat, payloads
// the editor would drop, and broken signatures.
class ProfileFindings {
public:
    struct Finding {
        QString file;
        // Empty for a fault of the file as a whole.
        QString payloadType;
        QString payloadDisplayName;
        QString payloadUUID;
        QString keyPath;
        QString message;

        QString text() const;
        QJsonObject json() const;
    };

    static QList<Finding> of(const OpenedProfile& opened, const ValidationSettings& settings);

private:
    static Finding about(const OpenedProfile& opened, const Payload& payload, const QString& keyPath,
                         const QString& message);
    static void addIdentifierFindings(const OpenedProfile& opened, QList<Finding>& findings);
    static void addFileFindings(const OpenedProfile& opened, QList<Finding>& findings);
};

} // namespace quorlin::cli
