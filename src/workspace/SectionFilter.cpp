#include "workspace/SectionFilter.h"

#include "plist/DefaultsKey.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorlin {

namespace {

using Model = PFMSupportedPlatforms::Model;

const QString& defaultsKey(Model platform) {
    switch (platform) {
    case Model::iOS:
        return DefaultsKey::lastChoiceFilteringForIOS;
    case Model::macOS:
        return DefaultsKey::lastChoiceFilteringForMacOS;
    case Model::tvOS:
        return DefaultsKey::lastChoiceFilteringForTvOS;
    case Model::watchOS:
        break;
    }
    return DefaultsKey::lastChoiceFilteringForWatchOS;
}

// The order the platform predicates are combined in; the result doesn't
// depend on it, but it is the order users name them in saved filters.
constexpr std::array<Model, 4> predicateOrder{Model::macOS, Model::iOS, Model::tvOS, Model::watchOS};

// Case and diacritic insensitive: "Réseau" holds "reseau".
QString folded(const QString& text) {
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString kept;
    kept.reserve(decomposed.size());
    for (const QChar character : decomposed) {
        if (!character.isMark())
            kept.append(character);
    }
    return kept.toCaseFolded();
}

bool holds(const QString& text, const QString& foldedTerm) {
    return folded(text).contains(foldedTerm);
}

bool anyHolds(const QStringList& texts, const QString& foldedTerm) {
    return std::any_of(texts.begin(), texts.end(),
                       [&](const QString& text) { return holds(text, foldedTerm); });
}

bool isConfigured(const PFMSection& section) {
    return section.payloadsConfigured() > 0;
}

} // namespace

SectionFilter::SectionFilter(SectionArrayController& list, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_list(list)
    , m_defaults(defaults) {
    for (const Model platform : PFMSupportedPlatforms::allModels)
        m_filteringFor[platform] = m_defaults.boolean(defaultsKey(platform)).value_or(false);
    connect(&m_list, &SectionArrayController::selectionChanged, this, &SectionFilter::selectionDidChange);
    connect(&m_list, &SectionArrayController::arrangedObjectsChanged, this,
            &SectionFilter::arrangedObjectsDidChange);
    updateFilterPredicate();
    m_selectedSection = m_list.selectedObject();
    m_lastGoodSelectedSection = m_selectedSection;
    arrangedObjectsDidChange();
}

bool SectionFilter::filteringFor(Model platform) const {
    return m_filteringFor.at(platform);
}

void SectionFilter::setFilteringFor(Model platform, bool on) {
    if (m_filteringFor.at(platform) == on)
        return;
    m_filteringFor[platform] = on;
    if (!m_suspendFilteringSaveToDefaults)
        m_defaults.set(defaultsKey(platform), on);
    updateFilterPredicate();
    Q_EMIT filtersChanged();
}

PFMSupportedPlatforms::Models SectionFilter::filteredForPlatforms() const {
    PFMSupportedPlatforms::Models platforms;
    for (const auto& [platform, on] : m_filteringFor) {
        if (on)
            platforms.insert(platform);
    }
    return platforms;
}

void SectionFilter::setPredicateConfiguredOnlyActive(bool on) {
    if (m_predicateConfiguredOnlyActive == on)
        return;
    m_predicateConfiguredOnlyActive = on;
    updateFilterPredicate();
    Q_EMIT filtersChanged();
}

void SectionFilter::setSearchText(const QString& text) {
    if (text == m_searchText)
        return;
    const auto termBefore = highlightedTerm();
    m_searchText = text;
    // A single character would match nearly every section.
    if (text.size() > 1)
        m_predicateSearchTerm = folded(text);
    else
        m_predicateSearchTerm.reset();
    updateFilterPredicate();
    Q_EMIT searchTextChanged(m_searchText);
    if (highlightedTerm() != termBefore)
        Q_EMIT highlightedTermChanged(highlightedTerm());
}

std::optional<QString> SectionFilter::highlightedTerm() const {
    return m_searchText.isEmpty() ? std::nullopt : std::optional<QString>(m_searchText);
}

bool SectionFilter::sectionMatchesSearch(const PFMSection& section, const QString& term) {
    const QString foldedTerm = folded(term);
    const PFMSectionProperties& properties = section.sectionProperties();
    if (holds(properties.title, foldedTerm))
        return true;
    if (properties.descriptionLine && holds(*properties.descriptionLine, foldedTerm))
        return true;
    if (anyHolds(section.searchKeywords(), foldedTerm))
        return true;
    if (anyHolds(section.domains().keys(), foldedTerm))
        return true;
    const auto& domains = section.domains();
    return std::any_of(domains.begin(), domains.end(), [&](const PFMSection::DomainPointer& domain) {
        return anyHolds(domain->allKeyNames(), foldedTerm) || anyHolds(domain->allKeyTitles(), foldedTerm) ||
               anyHolds(domain->allKeyDescriptions(), foldedTerm);
    });
}

// Several platforms narrow the list to the sections that support them all,
// while a section with a payload stays in view whatever they say.
void SectionFilter::updateFilterPredicate() {
    QList<QString> platformNames;
    for (const Model platform : predicateOrder) {
        if (m_filteringFor.at(platform))
            platformNames.append(PFMSupportedPlatforms::rawValue(platform));
    }
    const auto searchTerm = m_predicateSearchTerm;
    const bool configuredOnly = m_predicateConfiguredOnlyActive;
    if (!searchTerm && !configuredOnly && platformNames.isEmpty()) {
        m_list.setFilterPredicate(nullptr);
        return;
    }
    m_list.setFilterPredicate([=](const PFMSection& section) {
        if (searchTerm && !sectionMatchesSearch(section, *searchTerm))
            return false;
        if (configuredOnly && !isConfigured(section))
            return false;
        if (platformNames.isEmpty() || isConfigured(section))
            return true;
        const QStringList supported = section.supportedPlatformStrings();
        return std::all_of(platformNames.begin(), platformNames.end(), [&](const QString& name) {
            return supported.contains(name, Qt::CaseInsensitive);
        });
    });
}

bool SectionFilter::selectSection(PFMSection* section) {
    const auto row = m_list.arrangedObjects().indexOf(section);
    if (row < 0)
        return false;
    m_list.setSelectionIndexes({int(row)});
    return true;
}

void SectionFilter::selectionDidChange() {
    PFMSection* now = m_list.selectedObject();
    if (now == m_selectedSection)
        return;
    // Selecting again comes back through this slot.
    if (!now && reselectAfterFiltering())
        return;
    PFMSection* left = m_selectedSection;
    m_selectedSection = now;
    m_selectionIsSubstitute = now && m_selectingSubstitute;
    if (now && !m_selectionIsSubstitute)
        m_lastGoodSelectedSection = now;
    Q_EMIT selectedSectionChanged(now, left);
}

// A wider filter gives back the section the user chose, or a first
// selection once there are rows to choose from.
void SectionFilter::arrangedObjectsDidChange() {
    if (m_selectedSection && !m_selectionIsSubstitute)
        return;
    if (m_lastGoodSelectedSection && m_lastGoodSelectedSection != m_selectedSection &&
        selectSection(m_lastGoodSelectedSection))
        return;
    if (!m_selectedSection && m_list.selectionIndexes().isEmpty())
        selectSubstitute();
}

// A filter dropped the selection: the last good section if it is in view,
// else the first row that isn't a title. With only titles left the
// selection stays empty, and so does the form.
bool SectionFilter::reselectAfterFiltering() {
    if (m_list.arrangedObjects().isEmpty())
        return false;
    if (m_lastGoodSelectedSection && selectSection(m_lastGoodSelectedSection))
        return true;
    return selectSubstitute();
}

bool SectionFilter::selectSubstitute() {
    const QList<PFMSection*>& arranged = m_list.arrangedObjects();
    const auto first = std::find_if(arranged.begin(), arranged.end(), [](const PFMSection* section) {
        return section->sectionKind() != PFMSection::Kinds::groupTitle;
    });
    if (first == arranged.end())
        return false;
    const bool wasSelecting = std::exchange(m_selectingSubstitute, true);
    const bool selected = selectSection(*first);
    m_selectingSubstitute = wasSelecting;
    return selected;
}

} // namespace quorlin
