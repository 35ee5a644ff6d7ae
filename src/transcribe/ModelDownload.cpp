#include "transcribe/ModelDownload.h"

#include "base/AppError.h"
#include "platform/NetworkRoute.h"
#include "transcribe/PartialFile.h"

#include <QEventLoop>
#include <QFutureWatcher>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

constexpr int ok = 200;
constexpr int partialContent = 206;
constexpr int rangeNotSatisfiable = 416;

/// So often a connection that broke off is taken up again, or a server followed that leads elsewhere.
constexpr int mostRequests = 8;

/// Never from an encrypted connection to an open one.
bool mayLeadTo(const QUrl& from, const QUrl& to)
{
    return to.scheme() == "https"_L1 || (to.scheme() == "http"_L1 && from.scheme() == "http"_L1);
}

/// One request for what is missing, and what comes of it.
class Request {
public:
    Request(const ModelDownload& download, QUrl url, PartialFile& part)
        : m_download(download)
        , m_url(std::move(url))
        , m_part(part)
        , m_start(part.size())
    {
    }

    /// Until the reply has ended, well or not, or the network has none.
    void run(const std::stop_token& cancel);

    /// There was no way to the server.
    bool wasUnreachable() const { return !m_status && m_error != QNetworkReply::SslHandshakeFailedError; }

    /// The server has less than there is already.
    bool wasBeyondTheEnd() const { return m_status == rangeNotSatisfiable; }

    /// Where the server says that it is instead.
    const std::optional<QUrl>& elsewhere() const { return m_elsewhere; }

    /// What went wrong, in the network's words.
    [[noreturn]] void fail() const { throw AppError("The speech model could not be downloaded: " + m_problem.toStdString()); }

private:
    QNetworkRequest request() const;
    bool findWay(QNetworkAccessManager& network, const std::stop_token& cancel);
    void receive(QNetworkReply& reply, const std::stop_token& cancel);
    void follow(const QUrl& url);
    void begin(const QNetworkReply& reply);
    void take(QNetworkReply& reply);

    template <typename Step>
    void attempt(QNetworkReply& reply, Step step);

    const ModelDownload& m_download;
    const QUrl m_url;
    PartialFile& m_part;
    const std::int64_t m_start;
    std::optional<int> m_status;
    std::optional<QUrl> m_elsewhere;
    QNetworkReply::NetworkError m_error = QNetworkReply::NoError;
    QString m_problem;
    std::exception_ptr m_failure;
    int m_percent = -1;
};

QNetworkRequest Request::request() const
{
    QNetworkRequest request(m_url);
    // Each host has a way of its own.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setTransferTimeout(static_cast<int>(m_download.patience.count()));
    // As they are: packed bytes could not be counted.
    request.setRawHeader("Accept-Encoding", "identity");
    if (m_start > 0)
        request.setRawHeader("Range", "bytes=" + QByteArray::number(static_cast<qlonglong>(m_start)) + "-");
    return request;
}

void Request::run(const std::stop_token& cancel)
{
    QNetworkAccessManager network;
    if (!findWay(network, cancel))
        return;
    const std::unique_ptr<QNetworkReply> reply(network.get(request()));
    receive(*reply, cancel);
    if (m_failure)
        std::rethrow_exception(m_failure);
    if (reply->bytesAvailable() > 0)
        take(*reply);
    m_error = reply->error();
    m_problem = m_error == QNetworkReply::OperationCanceledError ? u"The server fell silent"_s : reply->errorString();
    if (const QVariant target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute); target.isValid())
        follow(m_url.resolved(target.toUrl()));
    if (const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute); status.isValid())
        m_status = status.toInt();
}

void Request::follow(const QUrl& url)
{
    m_problem = u"The server only leads elsewhere"_s;
    if (mayLeadTo(m_url, url))
        m_elsewhere = url;
}

/// False when there is none, or when cancelled.
bool Request::findWay(QNetworkAccessManager& network, const std::stop_token& cancel)
{
    QEventLoop loop;
    QFutureWatcher<NetworkRoute> watcher;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(findRoute(m_url, m_download.patience, loop));
    const std::stop_callback onCancel(
        cancel, [&loop] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); });
    loop.exec();
    if (cancel.stop_requested())
        return false;
    try {
        setRoute(network, watcher.result());
        return true;
    } catch (const AppError& error) {
        m_problem = QString::fromUtf8(error.what());
        return false;
    }
}

void Request::receive(QNetworkReply& reply, const std::stop_token& cancel)
{
    QEventLoop loop;
    QObject::connect(&reply, &QNetworkReply::metaDataChanged, &loop, [&] { attempt(reply, [&] { begin(reply); }); });
    QObject::connect(&reply, &QNetworkReply::readyRead, &loop, [&] { attempt(reply, [&] { take(reply); }); });
    QObject::connect(&reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    const std::stop_callback onCancel(
        cancel, [&reply] { QMetaObject::invokeMethod(&reply, &QNetworkReply::abort, Qt::QueuedConnection); });
    if (!reply.isFinished())
        loop.exec();
}

/// What goes wrong ends the reply: nothing may be thrown from within its signals.
template <typename Step>
void Request::attempt(QNetworkReply& reply, Step step)
{
    try {
        step();
    } catch (...) {
        m_failure = std::current_exception();
        reply.abort();
    }
}

/// Stores what has arrived.
void Request::take(QNetworkReply& reply)
{
    const QByteArray bytes = reply.readAll();
    if (m_status != ok && m_status != partialContent)
        return;
    if (m_part.size() + bytes.size() > m_download.model.bytes) {
        m_part.truncate(0);
        throw AppError("The server's speech model is not the published one");
    }
    m_part.append(bytes);
    const double fraction = static_cast<double>(m_part.size()) / static_cast<double>(m_download.model.bytes);
    const int percent = static_cast<int>(100 * fraction);
    if (m_download.onProgress && percent != std::exchange(m_percent, percent))
        m_download.onProgress(fraction);
}

/// Where what follows belongs. The network library asks again by itself when a connection breaks off early, and then this comes
/// once more.
void Request::begin(const QNetworkReply& reply)
{
    m_status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray range = "bytes " + QByteArray::number(static_cast<qlonglong>(m_start)) + "-";
    // A server that knows no ranges begins at the beginning.
    if (m_status == ok)
        m_part.truncate(0);
    else if (m_status == partialContent && reply.rawHeader("Content-Range").startsWith(range))
        m_part.truncate(m_start);
    else if (m_status == partialContent)
        throw AppError("The server sent another part of the speech model");
}

/// Until all of it is there.
Fetched receive(const ModelDownload& download, PartialFile& part, const std::stop_token& cancel)
{
    QUrl url(QString::fromStdString(download.source + download.model.file));
    for (int requests = 1; part.size() < download.model.bytes; ++requests) {
        const auto before = part.size();
        Request request(download, url, part);
        request.run(cancel);
        if (cancel.stop_requested())
            return Fetched::Cancelled;
        if (request.wasUnreachable())
            return Fetched::Unreachable;
        if (request.elsewhere())
            url = *request.elsewhere();
        else if (request.wasBeyondTheEnd())
            part.truncate(0);
        else if (part.size() <= before)
            request.fail();
        if (requests == mostRequests && part.size() < download.model.bytes)
            request.fail();
    }
    return Fetched::Complete;
}

} // namespace

Fetched fetch(const ModelDownload& download, const std::stop_token& cancel)
{
    PartialFile part(download.folder / download.model.file);
    if (part.size() > download.model.bytes)
        part.truncate(0);
    const bool isContinued = part.size() > 0;
    const auto isDamaged = [&] { return part.sha256() != download.model.sha256; };
    Fetched fetched = receive(download, part, cancel);
    if (fetched == Fetched::Complete && isDamaged() && isContinued) {
        // What an earlier attempt left may be to blame.
        part.truncate(0);
        fetched = receive(download, part, cancel);
    }
    if (fetched != Fetched::Complete)
        return fetched;
    if (isDamaged()) {
        part.truncate(0);
        throw AppError("The speech model was damaged on the way");
    }
    part.moveIntoPlace();
    return Fetched::Complete;
}

} // namespace vantry
