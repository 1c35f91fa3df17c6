#pragma once

#include "plist/UserDefaults.h"
#include "plist/Value.h"
#include "schema/PFMSupportedPlatforms.h"
#include "validation/ValidationSettingsDelegate.h"

#include <QString>

#include <array>
#include <memory>

namespace quorlin {

// The targets of one window: which platforms the profile is meant for and
// between which OS versions, and whether deprecation and supervision count
// as faults. Every change is remembered in the user defaults (so the next
// window starts from it) and told to the delegate.
class ValidationSettings {
public:
    using Model = PFMSupportedPlatforms::Model;

    // The factory targets, overlaid by the last choice kept in `defaults`.
    explicit ValidationSettings(UserDefaults& defaults);

    bool targeting(Model model) const { return platform(model).targeting; }
    // Free text; an empty string means no bound.
    QString minimumVersion(Model model) const { return platform(model).minimum; }
    QString maximumVersion(Model model) const { return platform(model).maximum; }
    bool targetingMacOS() const { return targeting(Model::macOS); }
    bool targetingIOS() const { return targeting(Model::iOS); }
    bool targetingTvOS() const { return targeting(Model::tvOS); }
    bool targetingWatchOS() const { return targeting(Model::watchOS); }
    bool targetingAnyPlatform() const;
    bool deprecationInvalidates() const { return m_deprecationInvalidates; }
    bool supervisionInvalidates() const { return m_supervisionInvalidates; }

    // Each setter stores, saves and notifies even when the value is unchanged.
    void setTargeting(Model model, bool targeting);
    void setMinimumVersion(Model model, const QString& version);
    void setMaximumVersion(Model model, const QString& version);
    void setDeprecationInvalidates(bool invalidates);
    void setSupervisionInvalidates(bool invalidates);

    // Back to the factory targets, one setter at a time.
    void reset();
    // An opened file starts with no targets without overwriting the choice
    // the user remembered for new windows.
    void resetWithoutSaving();

    plist::Dictionary persistedDictionary() const;

    void setDelegate(const std::weak_ptr<ValidationSettingsDelegate>& delegate) { m_delegate = delegate; }
    bool suspendSavingToDefaults() const { return m_suspendSavingToDefaults; }
    void setSuspendSavingToDefaults(bool suspend) { m_suspendSavingToDefaults = suspend; }

private:
    struct PlatformTarget {
        bool targeting = false;
        QString minimum;
        QString maximum;
    };

    static int indexOf(Model model);
    const PlatformTarget& platform(Model model) const { return m_platforms[indexOf(model)]; }
    PlatformTarget& platform(Model model) { return m_platforms[indexOf(model)]; }
    void readLastChoice();
    void didChange();

    UserDefaults& m_defaults;
    std::array<PlatformTarget, 4> m_platforms;
    bool m_deprecationInvalidates = true;
    bool m_supervisionInvalidates = false;
    std::weak_ptr<ValidationSettingsDelegate> m_delegate;
    bool m_suspendSavingToDefaults = false;
};

} // namespace quorlin
