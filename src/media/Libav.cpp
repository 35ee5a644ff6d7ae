#include "media/Libav.h"

#include "base/Log.h"

#include <QByteArray>

#include <cstdarg>

namespace vantry::libav {

namespace {

/// What the library says on its own goes to the log: a user is told in our words, by an AppError.
void log(void* source, int level, const char* format, va_list arguments)
{
    if (level > AV_LOG_WARNING || !logMedia().isDebugEnabled())
        return;
    char line[512];
    int isNewLine = 1;
    av_log_format_line2(source, level, format, arguments, line, sizeof line, &isNewLine);
    qCDebug(logMedia).noquote() << QByteArray(line).trimmed();
}

[[maybe_unused]] const bool isLogged = (av_log_set_callback(log), true);

} // namespace

std::string errorText(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

int check(int code, const std::string& what)
{
    if (code < 0)
        throw AppError(what + ": " + errorText(code));
    return code;
}

FramePtr makeFrame()
{
    FramePtr frame(av_frame_alloc());
    if (!frame)
        throw std::bad_alloc();
    return frame;
}

PacketPtr makePacket()
{
    PacketPtr packet(av_packet_alloc());
    if (!packet)
        throw std::bad_alloc();
    return packet;
}

ParametersPtr makeParameters()
{
    ParametersPtr parameters(avcodec_parameters_alloc());
    if (!parameters)
        throw std::bad_alloc();
    return parameters;
}

} // namespace vantry::libav
