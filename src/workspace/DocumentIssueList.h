#pragma once

#include "workspace/PFMSection.h"

#include <QList>
#include <QPointer>
#include <QString>

#include <optional>

namespace quorlin {

class FieldViewController;

// Every error the forms of a window show, in side-bar order, and the way
// from one to the next. It reads the very fields whose errors the sections'
// badges count, so a list and the badges can't disagree.
class DocumentIssueList {
public:
    // A field of a form: the section, its payload form and the row in it.
    struct Location {
        QPointer<PFMSection> section;
        int payloadIndex = -1;
        int fieldIndex = -1;
        friend bool operator==(const Location&, const Location&) = default;
    };
    struct Issue {
        Location location;
        QString sectionTitle;
        // Empty when the section holds a single payload.
        QString payloadTitle;
        QString keyTitle;
        QString message;
    };
    enum class Direction { next, previous };

    // The errors of `sections` that have a form, sorted as the side-bar sorts.
    static QList<Issue> collect(QList<PFMSection*> sections);
    // Where the field of `controller` sits among `sections`; nothing for none.
    static std::optional<Location> locate(const QList<PFMSection*>& sections,
                                          const FieldViewController* controller);
    // The issue after (or before) `from`, wrapping round; from nowhere, the
    // first (or last). Nothing without issues.
    static std::optional<Issue> step(const QList<Issue>& issues, const std::optional<Location>& from,
                                     Direction direction);
    // Opens what hides the field's row and the user can change here: its
    // payload's collapse and its group. True when the row is then shown.
    static bool reveal(const Location& location);

private:
    static bool precedes(const Location& a, const Location& b);
};

} // namespace quorlin
