#include "support/LocalHttpServer.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QTcpSocket>

namespace quorlin::test {

LocalHttpServer::LocalHttpServer(QString rootFolder, QObject* parent)
    : QObject(parent)
    , m_rootFolder(std::move(rootFolder)) {
    connect(&m_server, &QTcpServer::newConnection, this, &LocalHttpServer::accept);
}

bool LocalHttpServer::listen() {
    return m_server.listen(QHostAddress::LocalHost, 0);
}

QUrl LocalHttpServer::baseUrl() const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(m_server.serverPort()));
}

void LocalHttpServer::clearOverrides() {
    m_statuses.clear();
    m_bodies.clear();
    m_stalled.clear();
    m_contentTypes.clear();
}

void LocalHttpServer::accept() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
    }
}

void LocalHttpServer::answer(QTcpSocket* socket) {
    // Requests are small GETs; wait for the whole header before answering.
    QByteArray request = socket->property("request").toByteArray() + socket->readAll();
    socket->setProperty("request", request);
    if (!request.contains("\r\n\r\n"))
        return;
    const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
    if (requestLine.size() < 2) {
        respond(socket, 400, {});
        return;
    }
    const QString path = QUrl::fromPercentEncoding(requestLine.at(1));
    m_requestedPaths.append(path);
    if (m_stalled.contains(path))
        return;
    if (m_statuses.contains(path)) {
        respond(socket, m_statuses.value(path), m_bodies.value(path), path);
        return;
    }
    if (m_bodies.contains(path)) {
        respond(socket, 200, m_bodies.value(path), path);
        return;
    }
    QFile file(QDir(m_rootFolder).filePath(path.mid(1)));
    if (path.contains(QLatin1String("..")) || !file.open(QIODevice::ReadOnly)) {
        respond(socket, 404, QByteArrayLiteral("Not Found"));
        return;
    }
    respond(socket, 200, file.readAll(), path);
}

void LocalHttpServer::respond(QTcpSocket* socket, int status, const QByteArray& body, const QString& path) {
    QByteArray response = "HTTP/1.1 " + QByteArray::number(status) + " Status\r\n";
    response += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    const QByteArray type = m_contentTypes.value(path, QByteArrayLiteral("application/octet-stream"));
    if (!type.isEmpty())
        response += "Content-Type: " + type + "\r\n";
    response += "Connection: close\r\n\r\n";
    socket->write(response + body);
    socket->disconnectFromHost();
}

} // namespace quorlin::test
