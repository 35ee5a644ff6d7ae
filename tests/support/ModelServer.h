#pragma once

#include "support/HttpServer.h"

#include <QByteArray>

#include <functional>
#include <string>
#include <vector>

namespace vantry::test {

/// A server on this machine that holds one file and lets the test say how it gives it out.
class ModelServer {
public:
    struct Reply {
        int status = 200;
        QByteArray body;
        QByteArray contentRange{};
        QByteArray location{}; ///< Where it is instead.
        qsizetype sent =
            -1; ///< Bytes of the body that are sent before the connection breaks off a little later; all when negative.
        bool stays = false; ///< It does not break off, but nothing comes any more.
        bool isSilent = false; ///< Nothing at all is said.
    };

    /// Receives the first byte that is wanted.
    using Answer = std::function<Reply(qsizetype from)>;

    explicit ModelServer(Answer answer);

    /// What a name of a file follows.
    std::string source() const;

    /// Where each request began.
    const std::vector<qsizetype>& requests() const { return m_requests; }

    /// As servers do: all of it, or the rest from a byte on.
    static Reply whole(const QByteArray& file) { return { .body = file }; }
    static Reply rest(const QByteArray& file, qsizetype from);

private:
    void serve(QTcpSocket& connection, const HttpRequest& request);

    const Answer m_answer;
    std::vector<qsizetype> m_requests;
    const HttpServer m_server;
};

} // namespace vantry::test
