#pragma once

#include <QObject>
#include <QString>

#include <optional>

namespace quorlin {

// Where Quorlin, the sibling product, keeps its profile library: the folder
// "Profiles" in the "LibraryPath" of its preference file. Found at
// creation; while there is one, the preference file's folder is watched
// and every change reads the file again, so a library that moves or goes
// away is followed.
class QuorlinPreferencesHelper : public QObject {
    Q_OBJECT

public:
    explicit QuorlinPreferencesHelper(QString preferencesFilePath = standardPreferencesFilePath(),
                                      QObject* parent = nullptr);
    ~QuorlinPreferencesHelper() override;

    // $XDG_CONFIG_HOME/quorlin/Prefs/Prefs.plist
    static QString standardPreferencesFilePath();
    // The library that the file names, if the file and the folder exist.
    static std::optional<QString> libraryURL(const QString& preferencesFilePath);

    const std::optional<QString>& quorlinLibraryURL() const { return m_quorlinLibraryURL; }

Q_SIGNALS:
    void quorlinLibraryURLChanged();

private:
    void readAgain();

    QString m_preferencesFilePath;
    std::optional<QString> m_quorlinLibraryURL;
};

} // namespace quorlin
