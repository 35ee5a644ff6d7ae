#include "model/Coroutines.h"

#include <QCoroTimer>
#include <QTimer>

namespace vantry {

namespace {

QCoro::Task<> observe(QCoro::Task<> task, ErrorHandler onError)
{
    QString description;
    try {
        co_await task;
        co_return;
    } catch (const std::exception& error) {
        description = describe(error);
    }
    onError(description);
}

} // namespace

void launch(QCoro::Task<> task, ErrorHandler onError)
{
    observe(std::move(task), std::move(onError));
}

QString describe(const std::exception& error)
{
    return QString::fromUtf8(error.what());
}

QCoro::Task<> sleepUntil(HostTime deadline)
{
    const auto left = deadline - HostClock::now();
    if (left <= HostDuration::zero())
        co_return;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(std::chrono::ceil<std::chrono::milliseconds>(left));
    co_await timer;
}

} // namespace vantry
