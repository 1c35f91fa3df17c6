#pragma once

#include "plist/Value.h"
#include "supply/StandardizationItem.h"
#include "supply/UpdatingManifestRepository.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace quorlin {

class GenericSupport;

// Turns raw manifests into exactly one standard-form file per domain, in a
// fixed order of steps: merge the originals of a domain, convert the
// public project's dialect once on the merged manifest, set the category,
// overlay a support file, and finish with icon and sort priority, so that
// nothing overwrites them. A manifest that can't be processed simply gets
// no file; nothing here reports an error.
class StandardizationPipeline {
public:
    using Result = UpdatingManifestRepository::StandardizationResult;
    using Original = std::pair<QString, plist::Dictionary>;

    explicit StandardizationPipeline(UpdatingManifestRepository& repository);

    // The given originals, each with all other originals of its domain.
    Result run(const QStringList& originals);

    // The category that the folder of an original gives in the
    // ProfileManifests layout; nothing in any other.
    static std::optional<StandardizationItem::Category> category(const QString& original,
                                                                 bool isProfileManifestsRepository);
    // The order of the originals of one domain; the later one wins the merge.
    static bool isOrderedBefore(const Original& a, const Original& b);
    // "<domain>.plist", "Configuration.plist" for the general payload, and
    // "com.apple.<rest>.plist" for a domain that starts with ".".
    static QString standardizedFileName(const QString& domain);

private:
    QList<StandardizationItem> items(const QStringList& originals,
                                     const QMap<QString, plist::Dictionary>& all,
                                     const QMap<QString, QString>& domains);
    static void merge(StandardizationItem& item);
    void finish(StandardizationItem& item, const GenericSupport& genericSupport) const;
    // The file written, or nothing.
    std::optional<QString> write(const plist::Dictionary& manifest) const;
    GenericSupport genericSupport() const;

    UpdatingManifestRepository& m_repository;
};

} // namespace quorlin
