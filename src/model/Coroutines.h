#pragma once

#include "base/HostTime.h"

#include <QCoroTask>
#include <QString>

#include <exception>
#include <functional>

namespace vantry {

/// Receives the words of an error that ended a task.
using ErrorHandler = std::function<void(const QString& description)>;

/// Lets a task run that nobody awaits. What it throws reaches `onError`; without this it would vanish.
void launch(QCoro::Task<> task, ErrorHandler onError);

/// What a caught exception has to say.
QString describe(const std::exception& error);

/// Resumes on the calling thread, never before `deadline`; at once when that has passed.
QCoro::Task<> sleepUntil(HostTime deadline);

} // namespace vantry
