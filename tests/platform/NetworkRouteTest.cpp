#include "platform/NetworkRoute.h"

#include "base/AppError.h"
#include "support/HttpServer.h"
#include "support/PumpUntil.h"
#include "support/SilentServer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>
#include <gmock/gmock.h>

#include <memory>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

/// Where the environment says which proxy there is.
class NetworkRouteTest : public test::EventLoopTest {
protected:
    ~NetworkRouteTest() override { qunsetenv("http_proxy"); }

    static void setProxy(const std::string& url)
    {
        qputenv("http_proxy", QByteArray::fromStdString(url));
        QNetworkProxyFactory::setUseSystemConfiguration(true);
    }

    static QString hostOf(const QFuture<NetworkRoute>& route)
    {
        EXPECT_TRUE(test::pumpUntil([&] { return route.isFinished(); }));
        return route.result().value(0).hostName();
    }

    static std::string failureOf(const QFuture<NetworkRoute>& route)
    {
        EXPECT_TRUE(test::pumpUntil([&] { return route.isFinished(); }));
        try {
            route.result();
            return "found";
        } catch (const AppError& error) {
            return error.what();
        }
    }

    const QUrl m_server{ u"http://server.invalid/path"_s };
    std::unique_ptr<QObject> m_context = std::make_unique<QObject>();
};

} // namespace

TEST_F(NetworkRouteTest, leadsThroughTheProxyOfTheDesktop)
{
    test::HttpServer proxy(
        [](QTcpSocket& socket, const test::HttpRequest&) { test::HttpServer::answer(socket, 200, "through the proxy"); });
    setProxy(proxy.url().toString().toStdString());
    const auto route = findRoute(m_server, 1min, *m_context);
    EXPECT_EQ(hostOf(route), u"127.0.0.1"_s);
    qunsetenv("http_proxy");
    QNetworkAccessManager network;
    setRoute(network, route.result());
    const std::unique_ptr<QNetworkReply> reply(network.get(QNetworkRequest(m_server)));
    EXPECT_TRUE(test::pumpUntil([&] { return reply->isFinished(); }));
    EXPECT_EQ(reply->readAll(), "through the proxy");
    EXPECT_EQ(proxy.requests().at(0).path, "http://server.invalid/path");
}

TEST_F(NetworkRouteTest, whoHasNoAddressCannotBeReached)
{
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    EXPECT_THAT(failureOf(findRoute(m_server, 1min, *m_context)), HasSubstr("server.invalid cannot be reached: "));
    EXPECT_EQ(hostOf(findRoute(QUrl(u"http://127.0.0.1"_s), 1min, *m_context)), QString()) << "no proxy";
}

TEST_F(NetworkRouteTest, aProxyScriptThatIsSilentIsGivenUp)
{
    {
        const test::SilentServer server;
        setProxy("pac+" + server.url() + "/proxy.pac");
        EXPECT_EQ(failureOf(findRoute(m_server, 100ms, *m_context)), "The network did not answer in time.");
        const auto dropped = findRoute(m_server, 1min, *m_context);
        EXPECT_TRUE(test::pumpUntil([&] { return server.isAsked(); }));
        EXPECT_FALSE(dropped.isFinished());
        m_context.reset();
        EXPECT_EQ(failureOf(dropped), "The request was cancelled.");
        EXPECT_TRUE(isFindingRoutes());
    }
    EXPECT_TRUE(test::pumpUntil([] { return !isFindingRoutes(); })) << "the script's server is gone";
}

} // namespace vantry
