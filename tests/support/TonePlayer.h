#pragma once

#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <optional>
#include <vector>

namespace vantry::test {

/// Another program that plays one steady tone on each channel, for half a minute or until it is destroyed.
class TonePlayer {
public:
    enum class Server { PipeWire, Pulse };

    static constexpr double amplitude = 0.25;

    /// One pitch in hertz for each channel.
    TonePlayer(Server server, const std::vector<double>& pitches);

private:
    TemporaryFolder m_folder;
    std::optional<Program> m_program;
};

} // namespace vantry::test
