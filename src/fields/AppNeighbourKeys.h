#pragma once

#include "apptools/ChosenApp.h"
#include "fields/KeyValueWriter.h"
#include "model/PreferenceKey.h"

#include <QList>
#include <QString>

namespace quorlin {

// The keys beside an app field that describe the same app, by the names
// Apple's payloads give them. For a field named "<P>Identifier": its
// "<P>CodeRequirement" and "<P>IdentifierType" (a privacy row, for the app
// itself or, prefixed "AEReceiver", for the app it sends events to), and a
// "TeamIdentifier" (a login-item rule, a single sign-on extension). A
// prefixed trio is another app than the row's, so no unprefixed team goes
// with it.
class AppNeighbourKeys {
public:
    // The writes that choosing the app makes: the identifier, then each
    // neighbour the app has an answer for, when it doesn't already hold it.
    // A neighbour the app can't answer keeps its value: an App Store pick
    // knows no requirement, and the one typed there may still be right.
    static QList<KeyValueWriter::Change> changes(const PreferenceKey::Pointer& appKey,
                                                 const apptools::ChosenApp& app);

private:
    static PreferenceKey::Pointer sibling(const PreferenceKey& key, const QString& name);
};

} // namespace quorlin
