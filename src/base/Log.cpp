#include "base/Log.h"

namespace vantry {

Q_LOGGING_CATEGORY(logMedia, "vantry.media", QtWarningMsg)
Q_LOGGING_CATEGORY(logCapture, "vantry.capture", QtWarningMsg)
Q_LOGGING_CATEGORY(logRender, "vantry.render", QtWarningMsg)
Q_LOGGING_CATEGORY(logTranscribe, "vantry.transcribe", QtWarningMsg)
Q_LOGGING_CATEGORY(logModel, "vantry.model", QtWarningMsg)

} // namespace vantry
