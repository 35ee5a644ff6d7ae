#pragma once

#include <QByteArray>
#include <QFuture>

class QNetworkAccessManager;
class QNetworkRequest;

namespace vantry {

/// What a server answered, whatever it thinks of the request.
struct HttpAnswer {
    int status = 0;
    QByteArray body;
};

/// Posts a body. The future throws an AppError in the network's words when no whole answer comes, and when its body is larger than
/// `limit` bytes. To be called on the network's thread, where it is also finished; `abortAll` finishes it early.
QFuture<HttpAnswer> post(QNetworkAccessManager& network, const QNetworkRequest& request, const QByteArray& body, qint64 limit);

/// Ends every request that is under way.
void abortAll(QNetworkAccessManager& network);

} // namespace vantry
