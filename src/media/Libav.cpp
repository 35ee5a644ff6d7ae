#include "media/Libav.h"

namespace vantry::libav {

namespace {

/// The library tells of its steps on standard error; only what is amiss is worth a line there.
[[maybe_unused]] const bool isQuiet = (av_log_set_level(AV_LOG_WARNING), true);

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

} // namespace vantry::libav
