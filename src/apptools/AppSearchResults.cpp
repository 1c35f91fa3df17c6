#include "apptools/AppSearchResults.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <utility>

namespace quorlin::apptools {

namespace {

using ResultType = AppSearchResult::ResultType;

constexpr std::array<std::pair<const char*, const char*>, 50> systemAppTable{{
    {"App Store", "com.apple.AppStore"},
    {"Books", "com.apple.iBooks"},
    {"Music", "com.apple.Music"},
    {"TV", "com.apple.tv"},
    {"Camera", "com.apple.camera"},
    {"Clock", "com.apple.mobiletimer"},
    {"Contacts", "com.apple.MobileAddressBook"},
    {"Find My", "com.apple.findmy"},
    {"Health", "com.apple.Health"},
    {"Messages", "com.apple.MobileSMS"},
    {"Phone", "com.apple.mobilephone"},
    {"Photos", "com.apple.mobileslideshow"},
    {"Reminders", "com.apple.reminders"},
    {"Safari", "com.apple.mobilesafari"},
    {"Settings", "com.apple.Preferences"},
    {"Wallet", "com.apple.Passbook"},
    {"Watch", "com.apple.Bridge"},
    {"Apple Store", "com.apple.store.Jolly"},
    {"Calculator", "com.apple.calculator"},
    {"Calendar", "com.apple.mobilecal"},
    {"Clips", "com.apple.clips"},
    {"Code Scanner", "com.apple.BarcodeScanner"},
    {"Compass", "com.apple.compass"},
    {"FaceTime", "com.apple.facetime"},
    {"Files", "com.apple.DocumentsApp"},
    {"Fitness", "com.apple.Fitness"},
    {"Freeform", "com.apple.freeform"},
    {"GarageBand", "com.apple.mobilegarageband"},
    {"Home", "com.apple.Home"},
    {"iCloud Drive", "com.apple.iCloudDriveApp"},
    {"iMovie", "com.apple.iMovie"},
    {"iTunes Store", "com.apple.MobileStore"},
    {"Keynote", "com.apple.Keynote"},
    {"Magnifier", "com.apple.Magnifier"},
    {"Mail", "com.apple.mobilemail"},
    {"Maps", "com.apple.Maps"},
    {"Measure", "com.apple.measure"},
    {"News", "com.apple.news"},
    {"Notes", "com.apple.mobilenotes"},
    {"Numbers", "com.apple.Numbers"},
    {"Pages", "com.apple.Pages"},
    {"Photo Booth", "com.apple.Photo-Booth"},
    {"Podcasts", "com.apple.podcasts"},
    {"Shortcuts", "com.apple.shortcuts"},
    {"Stocks", "com.apple.stocks"},
    {"Swift Playgrounds", "com.apple.Playgrounds"},
    {"Tips", "com.apple.tips"},
    {"Translate", "com.apple.Translate"},
    {"Voice Memos", "com.apple.VoiceMemos"},
    {"Weather", "com.apple.weather"},
}};

bool containsBundleId(const QList<AppSearchResult>& rows, const QString& bundleId) {
    for (const AppSearchResult& row : rows) {
        if (row.bundleId == bundleId)
            return true;
    }
    return false;
}

// Identifier matches first, then name matches, each once.
QList<AppSearchResult> systemMatches(const QString& term) {
    const QString lowered = term.toLower();
    QList<AppSearchResult> matches;
    for (const AppSearchResult& app : AppSearchResults::systemApps()) {
        if (app.bundleId.toLower().contains(lowered))
            matches << app;
    }
    for (const AppSearchResult& app : AppSearchResults::systemApps()) {
        if (app.appName.toLower().contains(lowered) && !containsBundleId(matches, app.bundleId))
            matches << app;
    }
    return matches;
}

QList<AppSearchResult> rowsFor(const QString& term, const QList<AppSearchResult>& store) {
    if (term.isEmpty())
        return {};
    QList<AppSearchResult> rows = systemMatches(term);
    QList<AppSearchResult> storeRows;
    for (const AppSearchResult& row : store) {
        if (!containsBundleId(rows, row.bundleId) && !containsBundleId(storeRows, row.bundleId))
            storeRows << row;
    }
    rows += storeRows;
    // The typed text can always be taken as an identifier neither list knows.
    if (!containsBundleId(rows, term))
        rows.append({term, term, ResultType::bundleId, std::nullopt});
    return rows;
}

} // namespace

const QList<AppSearchResult>& AppSearchResults::systemApps() {
    static const QList<AppSearchResult> apps = [] {
        QList<AppSearchResult> rows;
        for (const auto& [name, bundleId] : systemAppTable)
            rows.append(
                {QString::fromUtf8(name), QString::fromUtf8(bundleId), ResultType::systemApp, std::nullopt});
        return rows;
    }();
    return apps;
}

bool AppSearchResults::isUsable(const SearchResponse& response) {
    const bool success = response.httpStatus && *response.httpStatus >= 200 && *response.httpStatus <= 299;
    const bool knownType = !response.contentType || *response.contentType == "text/javascript; charset=utf-8";
    return success && knownType && !response.body.isEmpty();
}

std::optional<QList<AppSearchResult>> AppSearchResults::storeResults(const QByteArray& body) {
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject() || !document.object().value(QLatin1String("results")).isArray())
        return std::nullopt;
    QList<AppSearchResult> rows;
    for (const QJsonValue& item : document.object().value(QLatin1String("results")).toArray()) {
        const QJsonObject result = item.toObject();
        const QJsonValue name = result.value(QLatin1String("trackName"));
        const QJsonValue bundleId = result.value(QLatin1String("bundleId"));
        if (!name.isString() || !bundleId.isString())
            continue;
        AppSearchResult row{name.toString(), bundleId.toString(), ResultType::storeApp, std::nullopt};
        const QUrl artwork(result.value(QLatin1String("artworkUrl60")).toString());
        if (artwork.isValid() && !artwork.isEmpty())
            row.artworkURL = artwork;
        rows << row;
    }
    return rows;
}

QList<AppSearchResult> AppSearchResults::withoutStore(const QString& term) {
    return rowsFor(term, {});
}

std::optional<QList<AppSearchResult>> AppSearchResults::build(const QString& term,
                                                              const SearchResponse& response) {
    if (term.isEmpty())
        return QList<AppSearchResult>();
    if (!isUsable(response))
        return std::nullopt;
    return rowsFor(term, storeResults(response.body).value_or(QList<AppSearchResult>()));
}

} // namespace quorlin::apptools
