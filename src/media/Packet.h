#pragma once

#include <functional>
#include <memory>

struct AVPacket;

namespace vantry {

struct PacketDeleter {
    void operator()(AVPacket* packet) const;
};

/// One encoded picture or stretch of sound, its times in its encoder's time base. Made by an encoder, taken by a `Muxer`.
using Packet = std::unique_ptr<AVPacket, PacketDeleter>;

/// Where an encoder puts what it made.
using PacketSink = std::function<void(Packet)>;

} // namespace vantry
