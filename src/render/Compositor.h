#pragma once

#include "media/Picture.h"
#include "render/RenderInstruction.h"

#include <memory>

namespace vantry {

/// Draws the output frames of one composition: background, screen, camera, overlays. What did not change since the last frame is
/// not made again, so a frame costs what moved in it. Frames may be asked for in any order. One thread at a time.
class Compositor {
public:
    /// The output's size in pixels, both even.
    Compositor(std::shared_ptr<const RenderInstruction> instruction, int width, int height);
    ~Compositor();

    /// The frame at `time`. A null picture is a source that shows nothing.
    Picture compose(MediaTime time, const Picture& screen, const Picture& camera);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
