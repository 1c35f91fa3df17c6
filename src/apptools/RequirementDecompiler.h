#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorlin::apptools {

// Turns a code requirement from the binary form a signature carries into
// the text form that code-requirement keys of a profile hold, e.g.
// identifier "com.example.app" and anchor apple generic and
// certificate leaf[subject.OU] = ABCDE12345.
//
// The input is hostile: every length is checked against what remains,
// nesting is bounded, and an operation it doesn't know gives nothing rather
// than a text that would say less than the requirement does.
class RequirementDecompiler {
public:
    // A requirement blob (magic 0xFADE0C00) in expression form.
    static std::optional<QString> decompileRequirement(const QByteArray& blob);
    // A bare expression, as it follows the requirement blob's header.
    static std::optional<QString> decompileExpression(const QByteArray& expression);
    // The designated requirement of a requirement set (magic 0xFADE0C01).
    static std::optional<QString> designatedRequirement(const QByteArray& requirementSet);
};

} // namespace quorlin::apptools
