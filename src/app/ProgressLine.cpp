#include "app/ProgressLine.h"

#include <cstdio>
#include <unistd.h>

namespace vantry {

ProgressLine::ProgressLine()
    : m_terminal(::isatty(STDERR_FILENO) == 1)
{
}

void ProgressLine::show(const QString& text, double fraction)
{
    const QByteArray bytes = text.toUtf8();
    if (m_terminal) {
        // The end of a longer line that stood here is erased.
        std::fprintf(stderr, "\r%s\033[K", bytes.constData());
        m_open = true;
        return;
    }
    const int tenth = static_cast<int>(fraction * 10);
    if (tenth == m_lastTenth)
        return;
    m_lastTenth = tenth;
    std::fprintf(stderr, "%s\n", bytes.constData());
}

void ProgressLine::end()
{
    if (m_open)
        std::fputc('\n', stderr);
    m_open = false;
}

} // namespace vantry
