#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>

namespace vantry::test {

/// Lets the event loop run until the condition holds, and says whether it did before the time was over: much of it, for the
/// sanitizers and busy machines.
template <typename Condition>
bool pumpUntil(Condition condition, std::chrono::milliseconds longest = std::chrono::seconds(60))
{
    const QDeadlineTimer deadline(longest);
    QTimer wake; // What changes on another thread may bring no event.
    wake.start(std::chrono::milliseconds(5));
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

/// A test with an event loop that `pumpUntil` runs.
class EventLoopTest : public testing::Test {
private:
    int m_argumentCount = 1;
    char m_name[5] = "test";
    char* m_arguments[2]{ m_name, nullptr };
    QCoreApplication m_application{ m_argumentCount, m_arguments };
};

} // namespace vantry::test
