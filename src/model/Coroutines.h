#pragma once

#include "base/HostTime.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QPromise>
#include <QString>
#include <QTimer>

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

namespace vantry {

/// Receives the words of an error that ended a task.
using ErrorHandler = std::function<void(const QString& description)>;

/// Lets a task run that nobody awaits. What it throws reaches `onError`; without this it would vanish.
void launch(QCoro::Task<> task, ErrorHandler onError);

/// What a caught exception has to say.
QString describe(const std::exception& error);

/// Resumes on the calling thread, never before `deadline`; at once when that has passed.
QCoro::Task<> sleepUntil(HostTime deadline);

/// Done when the signal is emitted the next time, when that took longer, or when the object is gone. What awaits it goes on from
/// the event loop. Not with QCoro's own way: a signal that is emitted again before that resumes there what has long ended.
template <typename Object, typename Signal>
QFuture<void> nextEmission(Object* object, Signal signal, std::optional<std::chrono::milliseconds> longest = std::nullopt)
{
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    const auto finish = [promise] { promise->finish(); };
    QObject::connect(object, signal, object, finish, Qt::SingleShotConnection);
    if (longest)
        QTimer::singleShot(*longest, object, finish);
    return promise->future();
}

} // namespace vantry
