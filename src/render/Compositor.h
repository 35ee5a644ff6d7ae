#pragma once

#include "media/Picture.h"
#include "render/BackgroundBlur.h"
#include "render/RenderInstruction.h"

#include <memory>

namespace vantry {

/// Draws the output frames of one composition: background, screen, camera, overlays. What did not change since the last frame is
/// not made again, so a frame costs what moved in it. Frames may be asked for in any order. One thread at a time.
class Compositor {
public:
    /// The output's size in pixels, both even. Compositors of one thread may share what blurs the camera's background: with its
    /// network, and the picture that it blurred last.
    Compositor(std::shared_ptr<const RenderInstruction> instruction, int width, int height,
        std::shared_ptr<BackgroundBlur> blur = std::make_shared<BackgroundBlur>());
    ~Compositor();

    /// The frame at `time`. A null picture is a source that shows nothing.
    Picture compose(MediaTime time, const Picture& screen, const Picture& camera);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
