#pragma once

#include <QByteArray>
#include <QUrl>

#include <functional>
#include <optional>

class QNetworkAccessManager;
class QNetworkReply;
class QObject;

namespace quorlin {

// How one GET of an online repository's file ended.
struct FetchOutcome {
    enum class Kind {
        response,       // the server answered; see httpStatus
        notHttp,        // something answered that isn't an HTTP server
        cancelled,      // the caller aborted it
        notConnected,   // no route to the host: the machine seems offline
        transportError, // any other failure on the way
        tooLarge,       // the body passed the size allowed, and was dropped
    };
    Kind kind = Kind::transportError;
    std::optional<int> httpStatus;
    QByteArray body;

    bool isSuccess() const {
        return kind == Kind::response && httpStatus && *httpStatus >= 200 && *httpStatus <= 299;
    }
};

// Fetches a file into memory, refusing bodies over maximumSize as they
// arrive so a hostile server can't fill the memory. The completion runs
// once on the context's thread; abort the returned reply to cancel.
QNetworkReply* fetch(QNetworkAccessManager& network, const QUrl& url, qint64 maximumSize, QObject* context,
                     std::function<void(FetchOutcome)> completion);

} // namespace quorlin
