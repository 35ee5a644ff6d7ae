#include "ai/Post.h"

#include "base/AppError.h"

#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPromise>

#include <algorithm>
#include <exception>
#include <memory>
#include <string>
#include <utility>

namespace vantry {

namespace {

/// A body that can be sent but once. The network sends others again, up to three times, when a server goes away without an answer,
/// who may have done its work, and be paid for it.
class SentOnce : public QIODevice {
public:
    explicit SentOnce(QByteArray body)
        : m_body(std::move(body))
    {
        open(ReadOnly);
    }

    bool isSequential() const override { return true; }
    bool seek(qint64 /*position*/) override { return false; }
    qint64 bytesAvailable() const override { return m_body.size() - m_sent + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char* data, qint64 most) override
    {
        const auto count = std::min<qint64>(most, m_body.size() - m_sent);
        std::copy_n(m_body.constData() + m_sent, count, data);
        m_sent += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray m_body;
    qint64 m_sent = 0;
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
    // Qt has no words for it where the body cannot be sent again.
    if (reply.error() == QNetworkReply::ContentReSendError)
        return "The server closed the connection without an answer.";
    return reply.errorString().toStdString();
}

/// Throws when there is none.
HttpAnswer answerOf(QNetworkReply& reply, qint64 limit)
{
    if (reply.bytesAvailable() > limit)
        throw AppError("The server's answer is larger than " + std::to_string(limit >> 20) + " MB.");
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 0 || isBroken(reply.error(), status))
        throw AppError(whyBroken(reply));
    return { .status = status, .body = reply.readAll() };
}

void finish(QPromise<HttpAnswer>& promise, QNetworkReply& reply, qint64 limit)
{
    // Nothing more of it is wanted, though it may go on until then.
    reply.disconnect();
    reply.manager()->deleteLater();
    try {
        promise.addResult(answerOf(reply, limit));
    } catch (...) {
        promise.setException(std::current_exception());
    }
    promise.finish();
}

} // namespace

QFuture<HttpAnswer> post(const QNetworkRequest& request, const NetworkRoute& route, const Question& question, QObject& owner)
{
    const auto promise = std::make_shared<QPromise<HttpAnswer>>();
    promise->start();
    auto* network = new QNetworkAccessManager(&owner);
    setRoute(*network, route);
    QNetworkRequest once = request;
    once.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    once.setHeader(QNetworkRequest::ContentLengthHeader, question.body.size());
    auto* device = new SentOnce(question.body);
    QNetworkReply* reply = network->post(once, device);
    device->setParent(reply);
    const qint64 limit = question.largestAnswer;
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [promise, reply, limit] {
        if (reply->bytesAvailable() > limit)
            finish(*promise, *reply, limit);
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [promise, reply, limit] { finish(*promise, *reply, limit); });
    return promise->future();
}

void abortAll(QObject& owner)
{
    for (QNetworkReply* reply : owner.findChildren<QNetworkReply*>())
        reply->abort();
}

} // namespace vantry
