#include "supply/NetworkFetch.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>

namespace quorlin {

namespace {

// A stalled server must not keep a check running for ever.
constexpr int transferTimeoutMilliseconds = 30'000;

FetchOutcome::Kind kindOfError(QNetworkReply::NetworkError error) {
    switch (error) {
    case QNetworkReply::OperationCanceledError:
        return FetchOutcome::Kind::cancelled;
    // The raw-content host is fixed, so failing to find or reach it at all
    // almost always means the machine is offline.
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::TemporaryNetworkFailureError:
        return FetchOutcome::Kind::notConnected;
    default:
        return FetchOutcome::Kind::transportError;
    }
}

FetchOutcome outcomeOf(QNetworkReply& reply, QByteArray body, bool tooLarge) {
    FetchOutcome outcome;
    if (tooLarge) {
        outcome.kind = FetchOutcome::Kind::tooLarge;
        return outcome;
    }
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid()) {
        outcome.kind = FetchOutcome::Kind::response;
        outcome.httpStatus = status.toInt();
        // A body cut short by a dropped connection is no file at all.
        if (reply.error() == QNetworkReply::NoError)
            outcome.body = std::move(body);
        else if (outcome.isSuccess())
            outcome.kind = FetchOutcome::Kind::transportError;
        return outcome;
    }
    if (reply.error() != QNetworkReply::NoError) {
        outcome.kind = kindOfError(reply.error());
        return outcome;
    }
    outcome.kind = FetchOutcome::Kind::notHttp;
    return outcome;
}

} // namespace

QNetworkReply* fetch(QNetworkAccessManager& network, const QUrl& url, qint64 maximumSize, QObject* context,
                     std::function<void(FetchOutcome)> completion) {
    QNetworkRequest request(url);
    request.setTransferTimeout(transferTimeoutMilliseconds);
    QNetworkReply* reply = network.get(request);
    auto body = std::make_shared<QByteArray>();
    auto tooLarge = std::make_shared<bool>(false);
    QObject::connect(reply, &QNetworkReply::readyRead, context, [reply, body, tooLarge, maximumSize] {
        if (*tooLarge)
            return;
        body->append(reply->readAll());
        if (body->size() > maximumSize) {
            *tooLarge = true;
            body->clear();
            reply->abort();
        }
    });
    QObject::connect(reply, &QNetworkReply::finished, context,
                     [reply, body, tooLarge, maximumSize, completion = std::move(completion)] {
                         if (!*tooLarge && reply->isOpen())
                             body->append(reply->readAll());
                         if (body->size() > maximumSize)
                             *tooLarge = true;
                         reply->deleteLater();
                         completion(outcomeOf(*reply, std::move(*body), *tooLarge));
                     });
    return reply;
}

} // namespace quorlin
