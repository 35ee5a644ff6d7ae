#include "ai/Post.h"

#include "base/AppError.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPromise>

#include <exception>
#include <memory>
#include <string>

namespace vantry {

namespace {

struct Exchange {
    QPromise<HttpAnswer> promise;
    bool isTooLarge = false;
};

/// Whether no whole answer came. Of the errors, most only say the status in other words.
bool isBroken(QNetworkReply::NetworkError error, int status)
{
    constexpr int success = 200;
    return error != QNetworkReply::NoError && (status == success || error < QNetworkReply::ProxyConnectionRefusedError);
}

std::string whyBroken(const QNetworkReply& reply)
{
    if (reply.error() == QNetworkReply::OperationCanceledError || reply.error() == QNetworkReply::TimeoutError)
        return "The server did not answer in time.";
    return reply.errorString().toStdString();
}

/// Throws when there is none.
HttpAnswer answerOf(QNetworkReply& reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 0 || isBroken(reply.error(), status))
        throw AppError(whyBroken(reply));
    return { .status = status, .body = reply.readAll() };
}

void finish(Exchange& exchange, QNetworkReply& reply, qint64 limit)
{
    try {
        if (exchange.isTooLarge)
            throw AppError("The server's answer is larger than " + std::to_string(limit >> 20) + " MB.");
        exchange.promise.addResult(answerOf(reply));
    } catch (...) {
        exchange.promise.setException(std::current_exception());
    }
    exchange.promise.finish();
    reply.deleteLater();
}

} // namespace

QFuture<HttpAnswer> post(QNetworkAccessManager& network, const QNetworkRequest& request, const QByteArray& body, qint64 limit)
{
    const auto exchange = std::make_shared<Exchange>();
    exchange->promise.start();
    QNetworkReply* reply = network.post(request, body);
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [exchange, reply, limit] {
        if (reply->bytesAvailable() <= limit)
            return;
        exchange->isTooLarge = true;
        reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [exchange, reply, limit] { finish(*exchange, *reply, limit); });
    return exchange->promise.future();
}

void abortAll(QNetworkAccessManager& network)
{
    for (QNetworkReply* reply : network.findChildren<QNetworkReply*>())
        reply->abort();
}

} // namespace vantry
