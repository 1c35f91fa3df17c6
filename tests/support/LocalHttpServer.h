#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTcpServer>
#include <QUrl>

namespace quorlin::test {

// A static file server on 127.0.0.1 for tests of network code: it serves a
// folder by path, and can be told to answer a path with another status or
// other bytes, to stall a path, or to go away entirely.
class LocalHttpServer : public QObject {
    Q_OBJECT

public:
    explicit LocalHttpServer(QString rootFolder, QObject* parent = nullptr);

    // Listens on a free port of the loopback interface.
    bool listen();
    void close() { m_server.close(); }
    QUrl baseUrl() const;

    void setStatus(const QString& path, int status) { m_statuses.insert(path, status); }
    void setBody(const QString& path, const QByteArray& body) { m_bodies.insert(path, body); }
    // Answers the path with this Content-Type, or with none when it is empty.
    void setContentType(const QString& path, const QByteArray& type) { m_contentTypes.insert(path, type); }
    // Never answers requests for the path, as a server that hangs.
    void stall(const QString& path) { m_stalled.insert(path); }
    void clearOverrides();

    // Paths asked for since the last clear, in order of arrival.
    const QStringList& requestedPaths() const { return m_requestedPaths; }
    void clearRequestedPaths() { m_requestedPaths.clear(); }

private:
    void accept();
    void answer(QTcpSocket* socket);
    void respond(QTcpSocket* socket, int status, const QByteArray& body, const QString& path = {});

    QString m_rootFolder;
    QTcpServer m_server;
    QHash<QString, int> m_statuses;
    QHash<QString, QByteArray> m_bodies;
    QHash<QString, QByteArray> m_contentTypes;
    QSet<QString> m_stalled;
    QStringList m_requestedPaths;
};

} // namespace quorlin::test
