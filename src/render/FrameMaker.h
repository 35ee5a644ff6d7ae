#pragma once

#include "base/Worker.h"
#include "media/Picture.h"
#include "render/CompositionPlan.h"
#include "render/Compositor.h"
#include "render/TrackPictures.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <future>
#include <memory>
#include <optional>
#include <string>

namespace vantry {

/// Makes the frames of a composition, for whoever writes or shows them: on threads of its own the pictures of both tracks are
/// decoded and composed while the frames before them are used. Belongs to one thread, but for `hurry`.
class FrameMaker {
public:
    /// `name` begins its threads' names: at most seven characters.
    explicit FrameMaker(const std::string& name, TrackPictures::Options tracks = {});
    ~FrameMaker();

    FrameMaker(const FrameMaker&) = delete;
    FrameMaker& operator=(const FrameMaker&) = delete;

    /// Frames that are asked for from now on are of this composition. What was asked for before is given up. Where a track's
    /// segments are the same as before, its open file and its decoded pictures stay in use, and so does what blurs the camera's
    /// background.
    void setComposition(const CompositionPlan& plan, std::shared_ptr<const RenderInstruction> instruction);

    /// Begins to make a frame, whichever; frames in a row are the cheapest.
    void ask(std::int64_t frame);

    /// How many frames were asked for and not taken.
    std::size_t asked() const { return m_asked.size(); }

    /// Taking the next one would not wait.
    bool isReady() const;

    /// Waits for the one that was asked for first. Throws AppError when its pictures cannot be read; the next one may be.
    Picture take();

    /// Forgets the frames that were asked for.
    void giveUp();

    /// Of the frames that were asked for so far, it does when they are made of pictures that are not far before. Any thread.
    void hurry();

private:
    /// What becomes of the frames asked for, which are counted.
    struct Progress {
        std::atomic<std::uint64_t> asked = 0;
        std::atomic<std::uint64_t> hurried = 0; ///< Up to this one, they need not be exact.
        std::atomic<std::uint64_t> givenUp = 0; ///< Up to this one, nobody waits for them.
    };

    /// One of the picture tracks with the thread that decodes it.
    class Track {
    public:
        Track(std::string thread, TrackPictures::Options options, const Progress& progress);

        void setSegments(std::vector<Segment> segments);
        std::future<Picture> at(MediaTime time, std::uint64_t number);

    private:
        const TrackPictures::Options m_options;
        const Progress& m_progress;
        std::optional<TrackPictures> m_pictures; ///< Belongs to the worker.
        Worker m_worker;
    };

    Progress m_progress;
    std::deque<std::future<Picture>> m_asked;
    Track m_screen;
    Track m_camera;

    // Belong to the worker.
    const std::shared_ptr<BackgroundBlur> m_blur = std::make_shared<BackgroundBlur>();
    std::optional<Compositor> m_compositor;

    Worker m_worker; ///< Composes. It waits for the tracks, so it ends before them.
};

} // namespace vantry
