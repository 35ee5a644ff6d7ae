#include "support/SilentServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>

namespace vantry::test {

SilentServer::SilentServer()
    : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* any = reinterpret_cast<sockaddr*>(&address);
    constexpr int waiting = 16;
    if (bind(m_socket.number(), any, size) != 0 || listen(m_socket.number(), waiting) != 0
        || getsockname(m_socket.number(), any, &size) != 0)
        throw std::runtime_error("No server");
    m_url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

} // namespace vantry::test
