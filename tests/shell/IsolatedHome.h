#pragma once

#include <QByteArray>
#include <QTemporaryDir>
#include <QtGlobal>

namespace quorlin::test {

// Points HOME at a fresh temporary folder while it lives. With the test
// mode of QStandardPaths the settings and data folders lie below HOME, so
// each test gets stores of its own, even when tests run in parallel.
class IsolatedHome {
public:
    IsolatedHome()
        : m_previous(qgetenv("HOME")) {
        qputenv("HOME", m_folder.path().toLocal8Bit());
    }
    ~IsolatedHome() { qputenv("HOME", m_previous); }
    IsolatedHome(const IsolatedHome&) = delete;
    IsolatedHome& operator=(const IsolatedHome&) = delete;

    bool isValid() const { return m_folder.isValid(); }
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
    QByteArray m_previous;
};

} // namespace quorlin::test
