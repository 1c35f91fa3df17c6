#include "workspace/PayloadViewController.h"

#include "fields/DirectKeyValueWriter.h"
#include "model/PreferenceKeyObserver.h"
#include "plist/Utilities.h"
#include "validation/HeldValueWords.h"
#include "workspace/PFMSectionViewController.h"

#include <QSet>

#include <algorithm>

namespace quorlin {

// Keys hold their observers weakly; this small object is the observer they
// hold, and it dies with the form.
class PayloadViewController::KeyFollower : public PreferenceKeyObserver {
public:
    explicit KeyFollower(PayloadViewController& form)
        : m_form(form) {}
    void preferenceKeyValueDidChange(PreferenceKey&) override { m_form.followKeyChange(); }
    void fieldChanged() { m_form.countErrors(); }

private:
    PayloadViewController& m_form;
};

namespace {

bool isFiltering(const FieldDisplaySettings& settings) {
    return !settings.filteredForPlatforms.empty() || settings.filteredForConfigured;
}

// Keys with a sorting index first, in that order; the rest keep theirs.
PreferenceKey::KeyList rowOrder(const Payload& payload) {
    PreferenceKey::KeyList flattened;
    for (const auto& key : payload.preferenceKeys())
        flattened.append(key->displayableSubkeys());
    PreferenceKey::KeyList indexed;
    PreferenceKey::KeyList unindexed;
    for (const auto& key : flattened)
        (key->prototype().sortingIndex() ? indexed : unindexed).append(key);
    std::stable_sort(indexed.begin(), indexed.end(), [](const auto& a, const auto& b) {
        return *a->prototype().sortingIndex() < *b->prototype().sortingIndex();
    });
    return indexed + unindexed;
}

} // namespace

PayloadViewController::PayloadViewController(PFMSectionViewController* sectionViewController,
                                             const Payload::Pointer& payload,
                                             std::shared_ptr<KeyValueWriter> writer)
    : m_sectionViewController(sectionViewController)
    , m_payload(payload)
    , m_writer(writer ? std::move(writer) : DirectKeyValueWriter::shared())
    , m_keyFollower(std::make_shared<KeyFollower>(*this)) {
    const auto displayName =
        std::find_if(payload->preferenceKeys().begin(), payload->preferenceKeys().end(),
                     [](const auto& key) { return key->name() == QStringLiteral("PayloadDisplayName"); });
    if (displayName != payload->preferenceKeys().end())
        m_payloadDisplayNameKey = *displayName;
    if (const auto& labels = payload->domainPrototype().displayGroupsLabelMap())
        m_displayGroupsLabelMap = *labels;
    buildFields(*payload);
    for (const auto& key : payload->preferenceKeys())
        key->addObserver(m_keyFollower);
    for (FormField& field : m_fields)
        validate(field);
    countErrors();
}

PayloadViewController::~PayloadViewController() {
    if (const auto payload = m_payload.lock()) {
        for (const auto& key : payload->preferenceKeys())
            key->removeObserver(m_keyFollower.get());
    }
}

void PayloadViewController::buildFields(const Payload& payload) {
    for (const auto& key : rowOrder(payload)) {
        if (!key->prototype().userVisible())
            continue;
        addField(key);
        if (payload.domainPrototype().domainString().isEmpty() &&
            key->name() == QStringLiteral("PayloadDescription"))
            addSigningField();
    }
    const bool hasSigning = std::any_of(m_fields.begin(), m_fields.end(), [](const FormField& field) {
        return field.arrangement == FormField::Arrangement::signing;
    });
    if (payload.domainPrototype().domainString().isEmpty() && !hasSigning)
        addSigningField();
}

void PayloadViewController::addField(const PreferenceKey::Pointer& key) {
    FormField field;
    field.key = key;
    field.controller = FieldViewController::make(key);
    field.controller->makeInstrument(m_writer);
    field.controller->setChangeHandler([follower = std::weak_ptr<KeyFollower>(m_keyFollower)] {
        if (const auto live = follower.lock())
            live->fieldChanged();
    });
    switch (field.controller->arrangement()) {
    case FieldViewController::Arrangement::boolean:
        field.arrangement = FormField::Arrangement::boolean;
        break;
    case FieldViewController::Arrangement::array:
        field.arrangement = FormField::Arrangement::array;
        break;
    case FieldViewController::Arrangement::ordinary:
        field.arrangement = FormField::Arrangement::field;
        break;
    }
    field.followsExclusion = key->inheritedExclusionByRule();
    field.lastHiddenByExclusion = key->excludedHiddenByConditional();
    field.lastExcluded = key->excluded();
    field.lastRequired = key->required();
    field.lastWritingOut = key->isWritingOut();
    field.hidden = shouldHide(field);
    m_fields.push_back(std::move(field));
}

void PayloadViewController::addSigningField() {
    FormField field;
    field.arrangement = FormField::Arrangement::signing;
    m_fields.push_back(std::move(field));
}

void PayloadViewController::setCollapsed(bool collapsed) {
    m_isCollapsed = collapsed;
}

void PayloadViewController::selectGroup(int group) {
    if (group == m_selectedGroup || !m_displayGroupsLabelMap.contains(group))
        return;
    m_selectedGroup = group;
    updateAllVisibility();
}

bool PayloadViewController::isTitleHidden() const {
    const auto key = payloadDisplayNameKey();
    return key && key->prototype().userVisible();
}

bool PayloadViewController::isTitleEditable() const {
    return payloadDisplayNameKey() && !isTitleHidden();
}

QString PayloadViewController::title() const {
    if (const auto key = payloadDisplayNameKey()) {
        const plist::Value* value = key->value().plistValue();
        return value ? value->toString().value_or(QString()) : QString();
    }
    const auto payload = m_payload.lock();
    return payload ? payload->domainPrototype().title() : QString();
}

bool PayloadViewController::hasCollapseButton() const {
    const auto payload = m_payload.lock();
    return payload && !payload->domainPrototype().singlePayload();
}

std::optional<QString> PayloadViewController::unfamiliarPropertiesNotice() const {
    const auto payload = m_payload.lock();
    if (!payload || !payload->unfamiliarPreferenceKeys() || payload->unfamiliarPreferenceKeys()->isEmpty())
        return std::nullopt;
    const QStringList names = payload->unfamiliarPreferenceKeys()->keys();
    if (names.size() == 1)
        return QStringLiteral("This payload contains an unfamiliar property: %1.").arg(names.first());
    return QStringLiteral("This payload contains unfamiliar properties: %1.")
        .arg(Utilities::joinedTermSeries(names, false));
}

void PayloadViewController::setValidationSettings(const std::weak_ptr<const ValidationSettings>& settings) {
    m_validationSettings = settings;
    for (FormField& field : m_fields) {
        if (field.controller)
            field.validator()->setValidationSettings(settings);
    }
}

bool PayloadViewController::hiddenByPlatformFilter(const FormField& field) const {
    if (!m_fieldDisplaySettings || !field.key)
        return false;
    const auto& filter = m_fieldDisplaySettings->filteredForPlatforms;
    const auto supportsAll = [&](const SupportedPlatforms& platforms) {
        return std::all_of(filter.begin(), filter.end(),
                           [&](auto model) { return platforms.contains(model); });
    };
    const auto payload = m_payload.lock();
    if (payload && payload->domainPrototype().supportedPlatforms() &&
        !supportsAll(*payload->domainPrototype().supportedPlatforms()))
        return true;
    const auto keyPlatforms = field.key->supportedPlatforms();
    return keyPlatforms && !supportsAll(*keyPlatforms);
}

bool PayloadViewController::hiddenByRule(const FormField& field) {
    return field.key && field.key->excludedHiddenByConditional();
}

bool PayloadViewController::shouldHide(const FormField& field) const {
    if (!field.key)
        return false;
    if (m_fieldDisplaySettings && m_fieldDisplaySettings->filteredForConfigured && !field.key->isWritingOut())
        return true;
    if (hiddenByPlatformFilter(field))
        return true;
    const int selected = hasGroupSelector() ? m_selectedGroup : 0;
    const auto group = field.key->effectiveDisplayGroupIndex();
    if (group && *group != selected)
        return true;
    return field.key->excludedHiddenByConditional();
}

void PayloadViewController::updateVisibility(FormField& field) {
    field.hidden = shouldHide(field);
}

void PayloadViewController::updateAllVisibility() {
    for (FormField& field : m_fields)
        updateVisibility(field);
    int visible =
        int(std::count_if(m_fields.begin(), m_fields.end(), [](const FormField& f) { return !f.hidden; }));
    if (unfamiliarPropertiesNotice())
        ++visible;
    if (m_noFieldsDisplayedShown)
        ++visible;
    const bool filtering = m_fieldDisplaySettings && isFiltering(*m_fieldDisplaySettings);
    if (visible >= 2)
        m_noFieldsDisplayedShown = false;
    else if (visible == 1 && m_noFieldsDisplayedShown && m_fieldDisplaySettings && !filtering)
        m_noFieldsDisplayedShown = false;
    else if (visible == 0 && filtering)
        m_noFieldsDisplayedShown = true;
    Q_EMIT visibilityChanged();
}

void PayloadViewController::setFieldDisplaySettings(const FieldDisplaySettings& settings) {
    const bool termUnchanged =
        m_fieldDisplaySettings && m_fieldDisplaySettings->highlightedTerm == settings.highlightedTerm;
    m_fieldDisplaySettings = settings;
    m_suspendFieldVisibilityResets = true;
    std::set<int> groupsWithHit;
    for (FormField& field : m_fields) {
        if (!field.controller)
            continue;
        field.controller->setFieldDisplaySettings(settings);
        if (termUnchanged)
            continue;
        if (!field.key->effectiveDisplayGroupIndex() && !field.followsExclusion)
            continue;
        applySearch(field, groupsWithHit);
    }
    if (!termUnchanged)
        m_groupBadges = groupsWithHit;
    updateAllVisibility();
    m_suspendFieldVisibilityResets = false;
}

// A hit on a key that a rule hides turns the hiding into disabling, so the
// user sees what the search found.
void PayloadViewController::applySearch(FormField& field, std::set<int>& groupsWithHit) {
    if (!field.controller->hasTermMatch()) {
        field.key->setAllExclusionsShouldDisable(false);
        field.lastHiddenByExclusion = field.key->excludedHiddenByConditional();
        return;
    }
    if (const auto group = field.key->effectiveDisplayGroupIndex())
        groupsWithHit.insert(*group);
    if (field.followsExclusion) {
        field.key->setAllExclusionsShouldDisable(true);
        field.lastHiddenByExclusion = field.key->excludedHiddenByConditional();
    }
}

void PayloadViewController::restoreDefaults() {
    for (FormField& field : m_fields) {
        if (field.key && !hiddenByPlatformFilter(field))
            field.key->restoreDefaultValues();
    }
    updateAllVisibility();
}

void PayloadViewController::validate(FormField& field) {
    if (!field.controller)
        return;
    const auto& validator = field.validator();
    validator->setValidationSettings(m_validationSettings);
    validator->validateValue();
    validator->validateSettings();
}

void PayloadViewController::recountErrors() {
    for (FormField& field : m_fields)
        validate(field);
    countErrors();
}

QList<Payload::HeldPlace> PayloadViewController::unshownHeldPlaces() const {
    const auto payload = m_payload.lock();
    if (!payload)
        return {};
    // A row a rule hides can't show its held value, nor offer to remove it.
    QSet<const PreferenceKey*> shown;
    for (const FormField& field : m_fields) {
        if (!hiddenByRule(field))
            shown.insert(field.key.get());
    }
    QList<Payload::HeldPlace> places = payload->heldValuePlaces();
    // Items of an array speak through the array's row.
    places.removeIf([&](const Payload::HeldPlace& place) {
        return shown.contains(place.key.get()) || place.path.contains(u'[');
    });
    return places;
}

QStringList PayloadViewController::unshownHeldValues() const {
    QStringList texts;
    for (const auto& place : unshownHeldPlaces())
        texts.append(place.path + QStringLiteral(": ") +
                     HeldValueWords::fieldText(*place.key).value_or(QString()));
    return texts;
}

PreferenceKey::KeyList PayloadViewController::unshownHeldValueKeys() const {
    PreferenceKey::KeyList keys;
    for (const auto& place : unshownHeldPlaces())
        keys.append(place.key);
    return keys;
}

void PayloadViewController::countErrors() {
    // A row a rule hides tells its held value in the form's list instead.
    const int count =
        int(std::count_if(m_fields.begin(), m_fields.end(),
                          [](const FormField& f) { return f.hasProminentError() && !hiddenByRule(f); })) +
        int(unshownHeldPlaces().size());
    if (count == m_errorCount)
        return;
    m_errorCount = count;
    Q_EMIT errorCountChanged(count);
}

void PayloadViewController::followKeyChange() {
    bool visibilityMoved = false;
    for (FormField& field : m_fields) {
        if (!field.key)
            continue;
        if (field.key->required() != field.lastRequired) {
            const bool wasRequired = field.lastRequired;
            field.lastRequired = field.key->required();
            field.validator()->requiredDidChange(wasRequired, field.lastRequired);
        }
        // A rule that lets a key in again may leave a required value missing.
        if (field.key->excluded() != field.lastExcluded) {
            field.lastExcluded = field.key->excluded();
            field.validator()->validateValue();
        }
        if (field.key->isWritingOut() != field.lastWritingOut) {
            field.lastWritingOut = field.key->isWritingOut();
            field.validator()->writingOutDidChange();
        }
        if (field.followsExclusion &&
            field.key->excludedHiddenByConditional() != field.lastHiddenByExclusion) {
            field.lastHiddenByExclusion = field.key->excludedHiddenByConditional();
            if (!m_suspendFieldVisibilityResets) {
                updateVisibility(field);
                visibilityMoved = true;
            }
        }
    }
    for (FormField& field : m_fields) {
        if (field.controller)
            field.controller->refresh();
    }
    if (visibilityMoved)
        Q_EMIT visibilityChanged();
    countErrors();
}

} // namespace quorlin
