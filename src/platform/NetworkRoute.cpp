#include "platform/NetworkRoute.h"

#include "base/AppError.h"

#include <QHostInfo>
#include <QNetworkAccessManager>
#include <QPromise>
#include <QTimer>
#include <QUrl>
#include <pthread.h>

#include <atomic>
#include <exception>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace vantry {

namespace {

std::atomic<int> askingThreads = 0;

/// What comes of a question. The first outcome counts. Any thread.
class Answer {
public:
    Answer() { m_promise.start(); }

    QFuture<NetworkRoute> future() const { return m_promise.future(); }

    void give(const NetworkRoute& route)
    {
        if (m_isGiven.exchange(true))
            return;
        m_promise.addResult(route);
        m_promise.finish();
    }

    void fail(const std::string& text)
    {
        if (m_isGiven.exchange(true))
            return;
        m_promise.setException(std::make_exception_ptr(AppError(text)));
        m_promise.finish();
    }

private:
    QPromise<NetworkRoute> m_promise;
    std::atomic<bool> m_isGiven = false;
};

class FixedRoute : public QNetworkProxyFactory {
public:
    explicit FixedRoute(NetworkRoute route)
        : m_route(std::move(route))
    {
    }

    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& /*query*/) override { return m_route; }

private:
    const NetworkRoute m_route;
};

/// Whom a connection goes to.
QString firstHost(const NetworkRoute& route, const QUrl& server)
{
    const bool isDirect = route.isEmpty() || route.front().type() == QNetworkProxy::NoProxy;
    return isDirect ? server.host() : route.front().hostName();
}

void ask(const QUrl& server, Answer& answer)
{
    const NetworkRoute route = QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(server));
    const QString host = firstHost(route, server);
    // The network remembers the address, and does not look it up again.
    const QHostInfo address = QHostInfo::fromName(host);
    if (address.error() == QHostInfo::NoError)
        answer.give(route);
    else
        answer.fail(host.toStdString() + " cannot be reached: " + address.errorString().toStdString());
}

} // namespace

QFuture<NetworkRoute> findRoute(const QUrl& server, std::chrono::milliseconds patience, QObject& context)
{
    auto answer = std::make_shared<Answer>();
    auto future = answer->future();
    auto* timer = new QTimer(&context);
    QObject::connect(timer, &QTimer::timeout, timer, [answer, timer] {
        answer->fail("The network did not answer in time.");
        timer->deleteLater();
    });
    QObject::connect(timer, &QObject::destroyed, timer, [answer] { answer->fail("The request was cancelled."); });
    timer->start(patience);
    ++askingThreads;
    std::thread([server, answer = std::move(answer)]() mutable {
        pthread_setname_np(pthread_self(), "vantry.route");
        ask(server, *std::exchange(answer, nullptr));
        --askingThreads; // Last: from here on the process may end.
    }).detach();
    return future;
}

void setRoute(QNetworkAccessManager& network, const NetworkRoute& route)
{
    network.setProxyFactory(new FixedRoute(route));
}

bool isFindingRoutes()
{
    return askingThreads > 0;
}

} // namespace vantry
