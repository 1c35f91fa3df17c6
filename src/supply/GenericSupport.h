#pragma once

#include "plist/Value.h"
#include "supply/StandardizationSettings.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// The finishing touches every standardized manifest gets last, so that
// nothing overwrites them: icon, sort priority, hidden payload keys and
// neutral sample values in place of the public project's placeholders.
class GenericSupport {
public:
    using SortOrder = QMap<QString, qint64>;

    static constexpr int maximumDepth = 64;

    // Without settings: no icons, no sort table, nothing hidden or scrubbed.
    GenericSupport() = default;
    // The settings' fields one by one, so that either form of the sort order
    // (a list, or an optional list) can be passed.
    GenericSupport(std::optional<QStringList> iconSearchDirectories, bool scrubThirdPartyPlaceholders,
                   bool hidePayloadTopLevelKeys, const std::optional<QStringList>& sortOrder);

    // Domain to position; parts of one entry separated by "," share it.
    static std::optional<SortOrder> processSortOrder(const std::optional<QStringList>& sortOrder);
    // The payload's common keys that forms hide in every domain but the general one.
    static const QStringList& hiddenTopLevelKeyNames();
    // The icon file name, without extension, of the manifest with an empty domain.
    static QString generalManifestIconName();

    void apply(plist::Dictionary& manifest) const;
    std::optional<QByteArray> iconData(const QString& domain) const;
    void scrub(plist::Array& keys, int depth = 0) const;

    const std::optional<QStringList>& iconSearchDirectories() const { return m_iconSearchDirectories; }
    bool scrubThirdPartyPlaceholders() const { return m_scrubThirdPartyPlaceholders; }
    bool hidePayloadTopLevelKeys() const { return m_hidePayloadTopLevelKeys; }
    const std::optional<SortOrder>& sortOrder() const { return m_sortOrder; }

private:
    void hideTopLevelKeys(plist::Array& keys) const;

    std::optional<QStringList> m_iconSearchDirectories;
    bool m_scrubThirdPartyPlaceholders = false;
    bool m_hidePayloadTopLevelKeys = false;
    std::optional<SortOrder> m_sortOrder;
};

} // namespace quorlin
