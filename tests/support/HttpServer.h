#pragma once

#include <QByteArray>
#include <QMap>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QSslConfiguration;

namespace vantry::test {

struct HttpRequest {
    QByteArray method;
    QByteArray path;
    QMap<QByteArray, QByteArray> headers; ///< Names in lower case.
    QByteArray body;
};

/// A server on this machine. Every whole request goes to a function of the test, which writes to the socket what it likes: an
/// answer, half of one, nothing. Lives in the event loop of the thread that made it.
class HttpServer {
public:
    using Serve = std::function<void(QTcpSocket&, const HttpRequest&)>;

    explicit HttpServer(Serve serve);

    /// Speaks TLS, with the certificate and the key of the configuration.
    HttpServer(Serve serve, const QSslConfiguration& tls);

    QUrl url() const;
    const std::vector<HttpRequest>& requests() const { return m_requests; }

    /// A whole answer. `headers` are more lines of the head, each with its end.
    static void answer(QTcpSocket& socket, int status, const QByteArray& body, const QByteArray& headers = {});

private:
    HttpServer(Serve serve, std::unique_ptr<QTcpServer> server);
    void accept();

    const Serve m_serve;
    std::vector<HttpRequest> m_requests;
    std::unique_ptr<QTcpServer> m_server; ///< Last: its connections use the rest.
};

} // namespace vantry::test
