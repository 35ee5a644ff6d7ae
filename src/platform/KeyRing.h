#pragma once

#include <QObject>

#include <functional>

namespace vantry {

/// Asks the desktop's secret service whether its default key ring is locked, so that reading from it asks the user. `answer` is
/// called once, on the calling thread and from its event loop; never when the service does not answer, or when `context` is gone
/// before.
void askWhetherKeyRingIsLocked(QObject* context, std::function<void(bool isLocked)> answer);

} // namespace vantry
