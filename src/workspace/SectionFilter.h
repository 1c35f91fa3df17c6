#pragma once

#include "plist/UserDefaults.h"
#include "schema/PFMSupportedPlatforms.h"
#include "workspace/PFMSection.h"
#include "workspace/SectionArrayController.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <map>
#include <optional>

namespace quorlin {

// What a window's side-bar shows of its sections: the platform filters, the
// configured-only filter and the search, combined into the list's predicate,
// and the selection that has to survive them. The platform filters are the
// user's last choice across windows; the other two start afresh per window.
class SectionFilter : public QObject {
    Q_OBJECT

public:
    using Model = PFMSupportedPlatforms::Model;

    // Reads the platform filters from `defaults`, applies the filter to `list`
    // and starts following its selection; while there is none, the first
    // row that isn't a title is selected.
    SectionFilter(SectionArrayController& list, UserDefaults& defaults, QObject* parent = nullptr);

    bool filteringForIOS() const { return filteringFor(Model::iOS); }
    void setFilteringForIOS(bool on) { setFilteringFor(Model::iOS, on); }
    bool filteringForMacOS() const { return filteringFor(Model::macOS); }
    void setFilteringForMacOS(bool on) { setFilteringFor(Model::macOS, on); }
    bool filteringForTvOS() const { return filteringFor(Model::tvOS); }
    void setFilteringForTvOS(bool on) { setFilteringFor(Model::tvOS, on); }
    bool filteringForWatchOS() const { return filteringFor(Model::watchOS); }
    void setFilteringForWatchOS(bool on) { setFilteringFor(Model::watchOS, on); }
    bool filteringFor(Model platform) const;
    void setFilteringFor(Model platform, bool on);
    // The platforms whose filter is on: what the forms narrow their rows to.
    PFMSupportedPlatforms::Models filteredForPlatforms() const;

    bool predicateConfiguredOnlyActive() const { return m_predicateConfiguredOnlyActive; }
    void setPredicateConfiguredOnlyActive(bool on);

    // Filters from two characters on; a shorter text shows everything.
    void setSearchText(const QString& text);
    QString searchText() const { return m_searchText; }
    // The search text for the forms to highlight; nothing when empty.
    std::optional<QString> highlightedTerm() const;

    // While set, platform filter changes aren't remembered, e.g. while a
    // document applies the filters it was saved with.
    void setSuspendFilteringSaveToDefaults(bool suspend) { m_suspendFilteringSaveToDefaults = suspend; }
    bool suspendFilteringSaveToDefaults() const { return m_suspendFilteringSaveToDefaults; }

    // Sets the list's predicate from the three filters.
    void updateFilterPredicate();

    PFMSection* selectedSection() const { return m_selectedSection; }
    PFMSection* lastGoodSelectedSection() const { return m_lastGoodSelectedSection; }
    // Selects a section of the list; false when the filters hide it.
    bool selectSection(PFMSection* section);

    // Whether `section` holds `term`, ignoring case and diacritics, in its
    // title, description, search keywords, domains or keys.
    static bool sectionMatchesSearch(const PFMSection& section, const QString& term);

Q_SIGNALS:
    // A platform or the configured-only filter changed.
    void filtersChanged();
    void searchTextChanged(const QString& text);
    void highlightedTermChanged(const std::optional<QString>& term);
    // `left` is the section shown before, so its errors can be brought up to date.
    void selectedSectionChanged(PFMSection* now, PFMSection* left);

private:
    void selectionDidChange();
    void arrangedObjectsDidChange();
    bool reselectAfterFiltering();
    bool selectSubstitute();

    SectionArrayController& m_list;
    UserDefaults& m_defaults;
    std::map<Model, bool> m_filteringFor;
    bool m_predicateConfiguredOnlyActive = false;
    bool m_suspendFilteringSaveToDefaults = false;
    QString m_searchText;
    // Set only from two characters on.
    std::optional<QString> m_predicateSearchTerm;
    // Unfamiliar sections are deleted when removed; these must not dangle.
    QPointer<PFMSection> m_selectedSection;
    QPointer<PFMSection> m_lastGoodSelectedSection;
    // The selection stands in for the last good one, which a filter hides;
    // it gives way when that one shows again.
    bool m_selectionIsSubstitute = false;
    bool m_selectingSubstitute = false;
};

} // namespace quorlin
