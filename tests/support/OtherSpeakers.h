#pragma once

#include "support/Command.h"
#include "support/Program.h"
#include "support/PumpUntil.h"

#include <stdexcept>
#include <string>

namespace vantry::test {

/// A second sound output, the default one while it is there. Wants an event loop.
class OtherSpeakers {
public:
    OtherSpeakers()
    {
        if (!pumpUntil([] { return runCommand("pw-cli ls Node").find("\"other-speakers\"") != std::string::npos; }))
            throw std::runtime_error("No other speakers");
        setDefault("other-speakers");
    }
    ~OtherSpeakers()
    {
        m_program.end();
        setDefault("test-sink");
    }

private:
    static void setDefault(const std::string& name)
    {
        runCommand("pw-metadata 0 default.configured.audio.sink '{ \"name\": \"" + name + "\" }'");
    }

    Program m_program{ { "pw-loopback", "--capture-props=media.class=Audio/Sink node.name=other-speakers",
        "--playback-props=node.autoconnect=false" } };
};

} // namespace vantry::test
