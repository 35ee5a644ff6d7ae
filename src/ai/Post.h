#pragma once

#include "platform/NetworkRoute.h"

#include <QByteArray>
#include <QFuture>

class QNetworkRequest;
class QObject;

namespace vantry {

/// What a server answered, whatever it thinks of the request.
struct HttpAnswer {
    int status = 0;
    QByteArray body;
};

struct Question {
    QByteArray body;
    qint64 largestAnswer = 0; ///< In bytes.
};

/// Posts a question, once, over a connection of its own: one that was kept may be about to be closed. The future throws an AppError
/// in the network's words when no whole answer comes, or one that is too large. To be called on the thread of `owner`, where it is
/// also finished; `abortAll` finishes it early.
QFuture<HttpAnswer> post(const QNetworkRequest& request, const NetworkRoute& route, const Question& question, QObject& owner);

/// Ends every request of the owner that is under way.
void abortAll(QObject& owner);

} // namespace vantry
