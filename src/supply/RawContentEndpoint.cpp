#include "supply/RawContentEndpoint.h"

#include <QStringList>

namespace quorlin::RawContentEndpoint {

QUrl baseUrl() {
    const QByteArray override = qgetenv("QUORLIN_RAW_CONTENT_URL");
    QUrl url = override.isEmpty() ? QUrl(QStringLiteral("https://raw.githubusercontent.com/"))
                                  : QUrl(QString::fromUtf8(override));
    if (!url.path().endsWith(QLatin1Char('/')))
        url.setPath(url.path() + QLatin1Char('/'));
    return url;
}

std::optional<QUrl> userContentRoot(const QUrl& repositoryAddress, const QString& branch) {
    const QStringList components = repositoryAddress.path().split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QUrl base = baseUrl();
    if (components.isEmpty() || branch.isEmpty() || !base.isValid())
        return std::nullopt;
    QUrl root = base;
    root.setPath(base.path() + components.join(QLatin1Char('/')) + QLatin1Char('/') + branch +
                 QLatin1Char('/'));
    return root;
}

} // namespace quorlin::RawContentEndpoint
