#include "overlayhelper/RequestServer.h"

#include <QCoreApplication>
#include <QString>

#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

namespace vantry {

RequestServer::RequestServer(int socket)
    : m_socket(socket)
    , m_readable(socket, QSocketNotifier::Read)
{
    QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable, [this] { serve(); });
    m_readable.setEnabled(false);
    m_renderer.start([this] { announce(); });
}

void RequestServer::announce()
{
    if (!write(&overlays::startedWord, sizeof overlays::startedWord))
        return QCoreApplication::quit();
    m_readable.setEnabled(true);
}

// The application sends a request in one go, so the rest of it is not waited for long.
void RequestServer::serve()
{
    overlays::Request request;
    if (!read(&request, sizeof request) || request.fragmentBytes > overlays::largestFragment)
        return QCoreApplication::quit();
    QByteArray fragment(static_cast<qsizetype>(request.fragmentBytes), Qt::Uninitialized);
    if (!read(fragment.data(), request.fragmentBytes))
        return QCoreApplication::quit();
    m_readable.setEnabled(false);
    m_renderer.render(QString::fromUtf8(fragment), request.cssWidth, [this](const Rendering& rendering) { reply(rendering); });
}

void RequestServer::reply(const Rendering& rendering)
{
    const QImage& image = rendering.image;
    const overlays::Reply reply{ rendering.outcome, image.width(), image.height() };
    bool sent = write(&reply, sizeof reply);
    for (int y = 0; sent && y < image.height(); ++y)
        sent = write(image.constScanLine(y), static_cast<std::size_t>(image.width()) * 4);
    if (!sent)
        return QCoreApplication::quit();
    m_readable.setEnabled(true);
}

bool RequestServer::read(void* target, std::size_t size) const
{
    auto* bytes = static_cast<char*>(target);
    while (size > 0) {
        const auto count = recv(m_socket, bytes, size, 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool RequestServer::write(const void* source, std::size_t size) const
{
    const auto* bytes = static_cast<const char*>(source);
    while (size > 0) {
        const auto count = send(m_socket, bytes, size, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace vantry
