#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantry {

class PipeWireLoop;

/// One channel that sound comes out of or goes into.
struct SoundPort {
    std::uint32_t id = 0; ///< The server's number.
    std::string channel; ///< In the server's words: "FL", "MONO" …
};

/// Knows what other programs play through the media server, while they come and go. Belongs to the loop's thread, or to who has its
/// lock; the loop must outlive it.
class PlayingPrograms {
public:
    /// Called on the loop's thread when what the functions below give may have changed.
    PlayingPrograms(PipeWireLoop& loop, std::function<void()> onChange);
    ~PlayingPrograms();

    /// Of every program but this one. What only passes on the sound of others (a virtual device of a mixer or an equalizer) is not
    /// among them: their sound would be there twice.
    std::vector<SoundPort> outputs() const;

    std::vector<SoundPort> inputsOf(std::uint32_t node) const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
