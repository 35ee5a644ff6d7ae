#include "support/ModelServer.h"

#include <QTimer>

namespace vantry::test {

namespace {

/// The first byte of "bytes=5-".
qsizetype firstByte(const QByteArray& range)
{
    return range.mid(range.indexOf('=') + 1).chopped(range.isEmpty() ? 0 : 1).toLongLong();
}

} // namespace

ModelServer::ModelServer(Answer answer)
    : m_answer(std::move(answer))
    , m_server([this](QTcpSocket& connection, const HttpRequest& request) { serve(connection, request); })
{
}

std::string ModelServer::source() const
{
    return m_server.url().toString().toStdString() + "/models/";
}

ModelServer::Reply ModelServer::rest(const QByteArray& file, qsizetype from)
{
    if (from == 0)
        return whole(file);
    const QByteArray last = QByteArray::number(file.size() - 1);
    return { .status = 206,
        .body = file.mid(from),
        .contentRange = "bytes " + QByteArray::number(from) + "-" + last + "/" + QByteArray::number(file.size()) };
}

void ModelServer::serve(QTcpSocket& connection, const HttpRequest& request)
{
    m_requests.push_back(firstByte(request.headers.value("range")));
    const Reply reply = m_answer(m_requests.back());
    if (reply.isSilent)
        return;
    connection.write("HTTP/1.1 " + QByteArray::number(reply.status)
        + " Whatever\r\nConnection: close\r\nContent-Length: " + QByteArray::number(reply.body.size()) + "\r\n");
    if (!reply.contentRange.isEmpty())
        connection.write("Content-Range: " + reply.contentRange + "\r\n");
    if (!reply.location.isEmpty())
        connection.write("Location: " + reply.location + "\r\n");
    connection.write("\r\n" + (reply.sent < 0 ? reply.body : reply.body.left(reply.sent)));
    if (!reply.stays)
        QTimer::singleShot(reply.sent < 0 ? 0 : 20, &connection, &QTcpSocket::disconnectFromHost);
}

} // namespace vantry::test
