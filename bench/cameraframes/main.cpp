#include "platform/CameraStream.h"
#include "platform/PipeWireLoop.h"

#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <span>
#include <unistd.h>

namespace {

void writeAll(int file, std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const auto written = write(file, bytes.data(), bytes.size());
        if (written <= 0)
            std::_Exit(0); // Nobody reads any more.
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

} // namespace

/// vantry_camera_frames CAMERA FILE: writes the camera's frames to the file, one after the other as they are, until it is ended or
/// nobody reads them.
int main(int count, char** arguments)
{
    using namespace vantry;
    if (count != 3)
        return 2;
    try {
        const int file = open(arguments[2], O_WRONLY); // Of a pipe: once there is a reader.
        fcntl(file, F_SETPIPE_SZ, 1 << 20);
        PipeWireLoop loop("frames");
        const CameraStream stream(loop, arguments[1],
            { .onFrame =
                    [file](const CameraFrame& frame) {
                        for (const auto& plane : frame.planes)
                            writeAll(file, plane.bytes);
                    },
                .onMode = {},
                .onFailed = {} });
        pause();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
