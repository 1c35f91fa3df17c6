#pragma once

#include <QString>
#include <QStringList>

namespace quorlin {

// Which of our icons a payload domain shows: a family (its colour) and a
// glyph (its picture). The first rule whose pattern the domain contains
// wins; a domain no rule names takes the system family's gear. The icon
// generator draws every name this table can give.
class PayloadIconTable {
public:
    struct Icon {
        QString family;
        QString glyph;
        // The file's base name, "payload-<family>-<glyph>".
        QString name() const;
    };

    static Icon iconForDomain(const QString& domain);
    static Icon unfamiliarIcon();
    // Every icon the table gives, each once, the unfamiliar one included.
    static QList<Icon> allIcons();
};

} // namespace quorlin
