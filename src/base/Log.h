#pragma once

#include <QLoggingCategory>

namespace vantry {

/// One category a room; what a user must know goes into an AppError, not here.
Q_DECLARE_LOGGING_CATEGORY(logMedia)
Q_DECLARE_LOGGING_CATEGORY(logCapture)
Q_DECLARE_LOGGING_CATEGORY(logRender)
Q_DECLARE_LOGGING_CATEGORY(logTranscribe)
Q_DECLARE_LOGGING_CATEGORY(logModel)

} // namespace vantry
