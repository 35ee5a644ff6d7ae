#include "render/Compositor.h"

#include "project/ProjectIndex.h"
#include "render/CameraLayer.h"
#include "render/OverlayLayer.h"
#include "render/ScreenLayer.h"

#include <deque>
#include <map>
#include <utility>

namespace vantry {

namespace {

/// So many frames' changes are remembered: a frame buffer that was last drawn longer ago is drawn anew.
constexpr std::size_t rememberedFrames = 32;

} // namespace

struct Compositor::State {
    State(std::shared_ptr<const RenderInstruction> instruction, int width, int height, std::shared_ptr<BackgroundBlur> blur);

    Picture compose(MediaTime time, const Picture& screen, const Picture& camera);
    TileMap update(double time, const Picture& screen, const Picture& camera);
    void updateCamera(double time, const Picture& camera, TileMap& changed);
    void updateOverlays(double time, TileMap& changed);
    TileMap staleParts(const std::uint8_t* memory) const;
    void draw(PictureBuffer& frame, const FrameRect& area);

    const std::shared_ptr<const RenderInstruction> instruction;
    const ProjectIndex timeline;
    const int width;
    const int height;

    PicturePool pool;
    const std::shared_ptr<BackgroundBlur> blur; ///< None where the project asks for none.
    ScreenLayer screenLayer;
    CameraLayer cameraLayer;
    std::map<std::size_t, OverlayLayer> overlays; ///< The visible ones by their place in the project, bottom to top.

    Picture last;
    std::int64_t serial = 0; ///< Counts the frames that were drawn.
    std::deque<TileMap> changes; ///< What each of the latest frames changed, up to frame `serial`.
    std::map<const std::uint8_t*, std::int64_t> drawn; ///< The frame that each of the pool's buffers holds.
};

Compositor::State::State(
    std::shared_ptr<const RenderInstruction> given, int frameWidth, int frameHeight, std::shared_ptr<BackgroundBlur> sharedBlur)
    : instruction(std::move(given))
    , timeline(instruction->project)
    , width(frameWidth)
    , height(frameHeight)
    , pool(frameWidth, frameHeight)
    , blur(instruction->project.blurBackground.value_or(false) ? std::move(sharedBlur) : nullptr)
    , screenLayer(frameWidth, frameHeight, instruction->project.screenCrop)
    , cameraLayer(frameWidth, frameHeight)
{
}

Picture Compositor::State::compose(MediaTime time, const Picture& screen, const Picture& camera)
{
    auto changed = update(seconds(time), screen, camera);
    if (last && changed.empty())
        return last;
    if (!last)
        changed.markAll();
    ++serial;
    changes.push_back(std::move(changed));
    if (changes.size() > rememberedFrames)
        changes.pop_front();
    if (screenLayer.whole() && overlays.empty() && !cameraLayer.isShown())
        return last = screenLayer.whole();

    auto frame = pool.make();
    const auto* memory = std::as_const(frame).plane(PlaneY).data;
    for (const auto& rect : staleParts(memory).rects())
        draw(frame, rect);
    drawn[memory] = serial;
    return last = std::move(frame).share();
}

TileMap Compositor::State::update(double time, const Picture& screen, const Picture& camera)
{
    TileMap changed(width, height);
    updateCamera(time, camera, changed);
    if (!cameraLayer.hidesAll()) // Or else the screen can wait: what is uncovered later is marked as changed then.
        screenLayer.update(screen, changed);
    updateOverlays(time, changed);
    return changed;
}

void Compositor::State::updateCamera(double time, const Picture& camera, TileMap& changed)
{
    const Size size{ static_cast<double>(width), static_cast<double>(height) };
    const auto placement = Renderer::cameraPlacement(time, timeline.layoutAt(time), instruction->project.bubbleSize, size);
    // What nobody sees need not be blurred.
    const bool isSeen = placement.opacity > Renderer::leastCameraOpacity;
    cameraLayer.update(blur && isSeen ? blur->apply(camera) : camera, placement, changed);
}

void Compositor::State::updateOverlays(double time, TileMap& changed)
{
    const Size size{ static_cast<double>(width), static_cast<double>(height) };
    auto gone = std::move(overlays);
    overlays.clear();
    for (const std::size_t index : timeline.visibleOverlays(time)) {
        const auto& overlay = instruction->project.overlays[index];
        const auto image = instruction->images.find(overlay.id);
        if (image == instruction->images.end())
            continue;
        const auto& bitmap = image->second;
        const auto where = Renderer::overlayPlacement(
            time, overlay, { static_cast<double>(bitmap.width()), static_cast<double>(bitmap.height()) }, size);
        if (!where)
            continue;
        auto node = gone.extract(index);
        auto& layer = node ? overlays.insert(std::move(node)).position->second
                           : overlays.try_emplace(index, bitmap, width, height).first->second;
        layer.update(*where, changed);
    }
    for (const auto& [index, layer] : gone)
        layer.markGone(changed);
}

/// What a buffer that was drawn before lacks of the present frame.
TileMap Compositor::State::staleParts(const std::uint8_t* memory) const
{
    TileMap stale(width, height);
    const auto known = drawn.find(memory);
    const auto age = known == drawn.end() ? serial : serial - known->second;
    if (age > static_cast<std::int64_t>(changes.size())) {
        stale.markAll();
        return stale;
    }
    for (auto change = changes.end() - age; change != changes.end(); ++change)
        stale.add(*change);
    return stale;
}

void Compositor::State::draw(PictureBuffer& frame, const FrameRect& area)
{
    if (!cameraLayer.hidesAll())
        screenLayer.draw(frame, area);
    cameraLayer.draw(frame, area);
    for (const auto& [index, overlay] : overlays)
        overlay.draw(frame, area);
}

Compositor::Compositor(
    std::shared_ptr<const RenderInstruction> instruction, int width, int height, std::shared_ptr<BackgroundBlur> blur)
    : m_state(std::make_unique<State>(std::move(instruction), width, height, std::move(blur)))
{
}

Compositor::~Compositor() = default;

Picture Compositor::compose(MediaTime time, const Picture& screen, const Picture& camera)
{
    return m_state->compose(time, screen, camera);
}

} // namespace vantry
