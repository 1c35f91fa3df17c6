#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// File extensions of the uniform type identifiers an administrator meets in
// manifests, standing in for the type declarations of Apple's platforms.
class UniformTypeExtensions {
public:
    // The declared extensions; nothing for a type the table doesn't declare.
    // "public.image" has no declaration of its own here: callers fall back to
    // imageExtensions().
    static std::optional<QStringList> extensions(const QString& typeIdentifier);
    // The extensions standing for any image.
    static const QStringList& imageExtensions();
};

} // namespace quorlin
