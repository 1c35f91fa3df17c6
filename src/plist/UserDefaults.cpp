#include "plist/UserDefaults.h"

#include "plist/ApplicationIdentity.h"
#include "plist/PlistReader.h"
#include "plist/XmlWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <utility>

namespace quorlin {

UserDefaults::UserDefaults(const QString& filePath, QObject* parent)
    : QObject(parent)
    , m_filePath(filePath) {
    load();
}

UserDefaults& UserDefaults::standard() {
    static UserDefaults instance(standardFilePath());
    return instance;
}

QString UserDefaults::standardFilePath() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    return QDir(folder).filePath(ApplicationIdentity::bundleIdentifier() + QStringLiteral(".plist"));
}

void UserDefaults::registerDefaults(const plist::Dictionary& defaults) {
    changeSignalling(defaults.keys(), [&] {
        for (auto it = defaults.begin(); it != defaults.end(); ++it)
            m_registered.insert(it.key(), it.value());
    });
}

plist::Value UserDefaults::value(const QString& key) const {
    if (m_persistent.contains(key))
        return m_persistent.value(key);
    return m_registered.value(key);
}

plist::Value UserDefaults::registeredValue(const QString& key) const {
    return m_registered.value(key);
}

bool UserDefaults::hasPersistentValue(const QString& key) const {
    return m_persistent.contains(key);
}

std::optional<plist::Array> UserDefaults::array(const QString& key) const {
    const plist::Value found = value(key);
    if (const plist::Array* array = found.array())
        return *array;
    return std::nullopt;
}

std::optional<plist::Dictionary> UserDefaults::dictionary(const QString& key) const {
    const plist::Value found = value(key);
    if (const plist::Dictionary* dictionary = found.dictionary())
        return *dictionary;
    return std::nullopt;
}

bool UserDefaults::set(const QString& key, const plist::Value& value) {
    if (value.isNull())
        return remove(key);
    if (m_persistent.contains(key) && m_persistent.value(key) == value)
        return true;
    changeSignalling({key}, [&] { m_persistent.insert(key, value); });
    return save();
}

bool UserDefaults::remove(const QString& key) {
    if (!m_persistent.contains(key))
        return true;
    changeSignalling({key}, [&] { m_persistent.remove(key); });
    return save();
}

bool UserDefaults::removePersistentDomain() {
    const bool removed = !QFileInfo::exists(m_filePath) || QFile::remove(m_filePath);
    changeSignalling(m_persistent.keys(), [&] { m_persistent = {}; });
    return removed;
}

void UserDefaults::load() {
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const auto result = plist::PlistReader::read(file.readAll());
    if (!result)
        return;
    if (const plist::Dictionary* dictionary = result->root.dictionary())
        m_persistent = *dictionary;
}

bool UserDefaults::save() const {
    const auto bytes = plist::XmlWriter::write(plist::Value(m_persistent));
    if (!bytes)
        return false;
    if (!QDir().mkpath(QFileInfo(m_filePath).absolutePath()))
        return false;
    // Written beside the old file and renamed over it: a crash leaves the
    // old settings or the new ones, never half of a file.
    QSaveFile file(m_filePath);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(*bytes);
    return file.commit();
}

template <typename Change>
void UserDefaults::changeSignalling(const QStringList& keys, Change change) {
    QList<std::pair<QString, plist::Value>> before;
    before.reserve(keys.size());
    for (const QString& key : keys)
        before.append({key, value(key)});
    change();
    for (const auto& [key, old] : std::as_const(before)) {
        if (!(value(key) == old))
            Q_EMIT valueChanged(key);
    }
}

} // namespace quorlin
