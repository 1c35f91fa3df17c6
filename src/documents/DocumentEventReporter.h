#pragma once

#include <QString>
#include <QStringList>

namespace quorlin {

// Where a document reports which kinds of payload are loaded, added and
// saved. The application's analytics implements it; a document without one
// reports nothing.
class DocumentEventReporter {
public:
    inline static const QString payloadAdded = QStringLiteral("Payload added");
    inline static const QString payloadSaved = QStringLiteral("Payload saved");
    inline static const QString payloadLoaded = QStringLiteral("Payload loaded");

    virtual ~DocumentEventReporter() = default;
    // The payload domains concerned, in the profile's order.
    virtual void report(const QStringList& domains, const QString& eventName) = 0;
};

} // namespace quorlin
