#include "support/ModelServer.h"

#include <QRegularExpression>
#include <QTimer>

#include <stdexcept>

namespace vantry::test {

ModelServer::ModelServer(Answer answer)
    : m_answer(std::move(answer))
{
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
        QTcpSocket* connection = m_server.nextPendingConnection();
        QObject::connect(connection, &QTcpSocket::readyRead, connection, [this, connection] { serve(*connection); });
        QObject::connect(connection, &QTcpSocket::disconnected, connection, &QObject::deleteLater);
    });
    if (!m_server.listen(QHostAddress::LocalHost))
        throw std::runtime_error("No local server");
}

std::string ModelServer::source() const
{
    return "http://127.0.0.1:" + std::to_string(m_server.serverPort()) + "/models/";
}

ModelServer::Reply ModelServer::rest(const QByteArray& file, qsizetype from)
{
    if (from == 0)
        return whole(file);
    const QByteArray range =
        QByteArray::number(from) + "-" + QByteArray::number(file.size() - 1) + "/" + QByteArray::number(file.size());
    return { .status = 206, .body = file.mid(from), .contentRange = "bytes " + range };
}

/// Requests without a body, one for each connection.
void ModelServer::serve(QTcpSocket& connection)
{
    const QByteArray heard = connection.peek(1 << 16);
    if (!heard.contains("\r\n\r\n"))
        return;
    connection.readAll();
    static const QRegularExpression pattern(QStringLiteral("\r\nRange: bytes=(\\d+)-\r\n"));
    const auto range = pattern.match(QString::fromLatin1(heard));
    m_requests.push_back(range.hasMatch() ? range.captured(1).toLongLong() : 0);
    const Reply reply = m_answer(m_requests.back());
    if (reply.isSilent)
        return;
    connection.write("HTTP/1.1 " + QByteArray::number(reply.status)
        + " Whatever\r\nConnection: close\r\nContent-Length: " + QByteArray::number(reply.body.size()) + "\r\n");
    if (!reply.contentRange.isEmpty())
        connection.write("Content-Range: " + reply.contentRange + "\r\n");
    connection.write("\r\n" + (reply.sent < 0 ? reply.body : reply.body.left(reply.sent)));
    if (!reply.stays)
        QTimer::singleShot(reply.sent < 0 ? 0 : 20, &connection, &QTcpSocket::disconnectFromHost);
}

} // namespace vantry::test
