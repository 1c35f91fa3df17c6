#pragma once

#include "plist/Value.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorlin {

// The program's settings, with the two domains it uses of the platform's
// user defaults: a registered domain, set afresh at every start and never
// saved, and a persistent domain kept as an XML property list. A lookup
// asks the persistent domain first, then the registered one. A value of
// the wrong class reads as absent, so a damaged file can't make a setting
// take a value of an unexpected type.
class UserDefaults : public QObject {
    Q_OBJECT

public:
    // Defaults kept in the given file; a missing or unreadable file starts
    // an empty persistent domain.
    explicit UserDefaults(const QString& filePath, QObject* parent = nullptr);

    // The process-wide instance on standardFilePath().
    static UserDefaults& standard();
    // <application config folder>/<bundle identifier>.plist
    static QString standardFilePath();

    QString filePath() const { return m_filePath; }

    // Merges entries into the registered domain, replacing like-named ones.
    void registerDefaults(const plist::Dictionary& defaults);

    // The value in force: persistent, else registered, else null.
    plist::Value value(const QString& key) const;
    plist::Value registeredValue(const QString& key) const;
    bool hasPersistentValue(const QString& key) const;
    plist::Dictionary persistentDomain() const { return m_persistent; }

    std::optional<bool> boolean(const QString& key) const { return value(key).toBoolean(); }
    std::optional<qint64> integer(const QString& key) const { return value(key).toInteger(); }
    std::optional<double> real(const QString& key) const { return value(key).toReal(); }
    // Booleans, integers and reals all answer, as the platform's numbers do.
    std::optional<double> number(const QString& key) const { return value(key).numberAsReal(); }
    std::optional<QString> string(const QString& key) const { return value(key).toString(); }
    std::optional<QByteArray> data(const QString& key) const { return value(key).toData(); }
    std::optional<plist::Date> date(const QString& key) const { return value(key).toDate(); }
    std::optional<plist::Array> array(const QString& key) const;
    std::optional<plist::Dictionary> dictionary(const QString& key) const;

    // Each change is saved at once. They answer false when the file could
    // not be written; the change still holds for this process.
    bool set(const QString& key, const plist::Value& value); // a null value removes
    bool remove(const QString& key);
    // Deletes the file and forgets every persistent value.
    bool removePersistentDomain();

Q_SIGNALS:
    // A key's value in force changed (not merely its storage).
    void valueChanged(const QString& key);

private:
    void load();
    bool save() const;
    // Runs a change and signals every key among `keys` whose value in force
    // it altered.
    template <typename Change>
    void changeSignalling(const QStringList& keys, Change change);

    QString m_filePath;
    plist::Dictionary m_registered;
    plist::Dictionary m_persistent;
};

} // namespace quorlin
