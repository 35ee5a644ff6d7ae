#include "support/HttpServer.h"

#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QSslServer>

#include <stdexcept>
#include <utility>

namespace vantry::test {

namespace {

/// Takes a request off what has arrived, once it is whole.
std::optional<HttpRequest> takeRequest(QByteArray& arrived)
{
    const auto headLength = arrived.indexOf("\r\n\r\n");
    if (headLength < 0)
        return std::nullopt;
    const auto lines = arrived.first(headLength).split('\n');
    const auto words = lines.front().trimmed().split(' ');
    HttpRequest request{ .method = words.value(0), .path = words.value(1) };
    for (const auto& line : lines.mid(1)) {
        const auto colon = line.indexOf(':');
        request.headers[line.first(colon).toLower()] = line.sliced(colon + 1).trimmed();
    }
    const auto start = headLength + 4;
    const auto length = request.headers.value("content-length", "0").toLongLong();
    if (arrived.size() - start < length)
        return std::nullopt;
    request.body = arrived.sliced(start, length);
    arrived = arrived.sliced(start + length);
    return request;
}

std::unique_ptr<QTcpServer> tlsServer(const QSslConfiguration& tls)
{
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(tls);
    return server;
}

} // namespace

HttpServer::HttpServer(Serve serve)
    : HttpServer(std::move(serve), std::make_unique<QTcpServer>())
{
}

HttpServer::HttpServer(Serve serve, const QSslConfiguration& tls)
    : HttpServer(std::move(serve), tlsServer(tls))
{
}

HttpServer::HttpServer(Serve serve, std::unique_ptr<QTcpServer> server)
    : m_serve(std::move(serve))
    , m_server(std::move(server))
{
    // Whatever the machine's environment says: what goes to ourselves takes no way round.
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] { accept(); });
    if (!m_server->listen(QHostAddress::LocalHost))
        throw std::runtime_error("No server: " + m_server->errorString().toStdString());
}

QUrl HttpServer::url() const
{
    const bool speaksTls = qobject_cast<QSslServer*>(m_server.get()) != nullptr;
    QUrl url(QStringLiteral("http://127.0.0.1"));
    url.setScheme(speaksTls ? QStringLiteral("https") : url.scheme());
    url.setPort(m_server->serverPort());
    return url;
}

void HttpServer::accept()
{
    while (QTcpSocket* socket = m_server->nextPendingConnection()) {
        const auto arrived = std::make_shared<QByteArray>();
        const auto read = [this, socket, arrived] {
            *arrived += socket->readAll();
            while (const auto request = takeRequest(*arrived)) {
                m_requests.push_back(*request);
                m_serve(*socket, *request);
            }
        };
        QObject::connect(socket, &QTcpSocket::readyRead, socket, read);
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        read(); // It may have come before.
    }
}

void HttpServer::answer(QTcpSocket& socket, int status, const QByteArray& body, const QByteArray& headers)
{
    socket.write("HTTP/1.1 " + QByteArray::number(status) + " Whatever\r\nContent-Length: " + QByteArray::number(body.size())
        + "\r\n" + headers + "\r\n" + body);
}

} // namespace vantry::test
