#include "workspace/PayloadIconTable.h"

#include <QSet>

namespace quorlin {

namespace {

struct Rule {
    const char* pattern;
    const char* family;
    const char* glyph;
};

// Specific patterns come before the general ones they contain.
constexpr Rule rules[] = {
    {"airplay", "devices", "display"},
    {"wifi", "network", "wifi"},
    {"vpn", "network", "vpn"},
    {"ethernet", "network", "ethernet"},
    {"cellular", "network", "cellular"},
    {"apn", "network", "cellular"},
    {"networkusagerules", "network", "cellular"},
    {"dns", "network", "dns"},
    {"proxy", "network", "proxy"},
    {"relay", "network", "proxy"},
    {"domains", "network", "link"},
    {"security.acme", "certificates", "request"},
    {"security.scep", "certificates", "request"},
    {"security.pkcs12", "certificates", "key"},
    {"identity", "certificates", "key"},
    {"smartcard", "certificates", "key"},
    {"certificate", "certificates", "certificate"},
    {"security.root", "certificates", "certificate"},
    {"security.pem", "certificates", "certificate"},
    {"security.pkcs1", "certificates", "certificate"},
    {"Certificate", "certificates", "certificate"},
    {"firewall", "security", "firewall"},
    {"FileVault", "security", "lock"},
    {"FDERecovery", "security", "lock"},
    {"passwordpolicy", "security", "lock"},
    {"profileRemovalPassword", "security", "lock"},
    {"preference.security", "security", "lock"},
    {"policy", "security", "shield"},
    {"TCC", "security", "shield"},
    {"sso", "security", "shield"},
    {"contentfilter", "restrictions", "filter"},
    {"webcontent-filter", "restrictions", "filter"},
    {"timelimits", "restrictions", "hourglass"},
    {"applicationaccess", "restrictions", "nosign"},
    {"app.lock", "restrictions", "nosign"},
    {"caldav", "accounts", "calendar"},
    {"calendar", "accounts", "calendar"},
    {"carddav", "accounts", "contacts"},
    {"eas.account", "accounts", "mail"},
    {"ews.account", "accounts", "mail"},
    {"mail", "accounts", "mail"},
    {"account", "accounts", "person"},
    {"DirectoryService", "accounts", "person"},
    {"google-oauth", "accounts", "person"},
    {"preference.users", "accounts", "person"},
    {"appstore", "apps", "store"},
    {"webClip", "apps", "bookmark"},
    {"NSExtension", "apps", "puzzle"},
    {"ShareKitHelper", "apps", "puzzle"},
    {"fileproviderd", "apps", "puzzle"},
    {"homescreenlayout", "apps", "grid"},
    {"servicemanagement", "apps", "grid"},
    {"gamed", "apps", "grid"},
    {"printing", "devices", "printer"},
    {"airprint", "devices", "printer"},
    {"tvremote", "devices", "display"},
    {"conferenceroomdisplay", "devices", "display"},
    {"screensaver", "devices", "display"},
    {"desktop", "devices", "display"},
    {"dock", "devices", "dock"},
    {"DiscRecording", "devices", "disc"},
    {"xsan", "devices", "disc"},
    {"SoftwareUpdate", "system", "update"},
    {"TimeMachine", "system", "clock"},
    {"notificationsettings", "system", "bell"},
    {"font", "system", "font"},
    {"login", "system", "login"},
};

constexpr Rule fallback{"", "system", "gear"};

PayloadIconTable::Icon iconOf(const Rule& rule) {
    return {QString::fromLatin1(rule.family), QString::fromLatin1(rule.glyph)};
}

} // namespace

QString PayloadIconTable::Icon::name() const {
    return QStringLiteral("payload-%1-%2").arg(family, glyph);
}

PayloadIconTable::Icon PayloadIconTable::iconForDomain(const QString& domain) {
    for (const Rule& rule : rules) {
        if (domain.contains(QLatin1StringView(rule.pattern)))
            return iconOf(rule);
    }
    return iconOf(fallback);
}

PayloadIconTable::Icon PayloadIconTable::unfamiliarIcon() {
    return {QStringLiteral("unfamiliar"), QStringLiteral("question")};
}

QList<PayloadIconTable::Icon> PayloadIconTable::allIcons() {
    QList<Icon> icons;
    QSet<QString> seen;
    const auto add = [&](const Icon& icon) {
        if (!seen.contains(icon.name())) {
            seen.insert(icon.name());
            icons.append(icon);
        }
    };
    for (const Rule& rule : rules)
        add(iconOf(rule));
    add(iconOf(fallback));
    add(unfamiliarIcon());
    return icons;
}

} // namespace quorlin
