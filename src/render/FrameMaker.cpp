#include "render/FrameMaker.h"

#include <utility>

namespace vantry {

FrameMaker::Track::Track(std::string thread, TrackPictures::Options options, const Progress& progress)
    : m_options(options)
    , m_progress(progress)
    , m_worker(std::move(thread))
{
}

void FrameMaker::Track::setSegments(std::vector<Segment> segments)
{
    m_worker.post([this, segments = std::move(segments)] {
        if (!m_pictures || m_pictures->segments() != segments)
            m_pictures.emplace(segments, m_options);
    });
}

std::future<Picture> FrameMaker::Track::at(MediaTime time, std::uint64_t number)
{
    return m_worker.async([this, time, number] {
        const auto isHurried = [&] { return number <= m_progress.hurried; };
        return number > m_progress.givenUp ? m_pictures->at(time, isHurried) : Picture();
    });
}

FrameMaker::FrameMaker(const std::string& name, TrackPictures::Options tracks)
    : m_screen(name + "-screen", tracks, m_progress)
    , m_camera(name + "-camera", tracks, m_progress)
    , m_worker(name + "-compose")
{
}

FrameMaker::~FrameMaker()
{
    giveUp();
}

void FrameMaker::setComposition(const CompositionPlan& plan, std::shared_ptr<const RenderInstruction> instruction)
{
    giveUp();
    m_screen.setSegments(plan.segmentsOf(TrackKind::screen));
    m_camera.setSegments(plan.segmentsOf(TrackKind::camera));
    m_worker.post([this, instruction = std::move(instruction), size = plan.size] {
        m_compositor.emplace(instruction, size.width, size.height, m_blur);
    });
}

void FrameMaker::ask(std::int64_t frame)
{
    const auto time = frame * frameDuration;
    const auto number = ++m_progress.asked;
    auto screen = m_screen.at(time, number).share();
    auto camera = m_camera.at(time, number).share();
    m_asked.push_back(m_worker.async([this, time, number, screen = std::move(screen), camera = std::move(camera)] {
        const auto& screenPicture = screen.get();
        const auto& cameraPicture = camera.get();
        return number > m_progress.givenUp ? m_compositor->compose(time, screenPicture, cameraPicture) : Picture();
    }));
}

bool FrameMaker::isReady() const
{
    return m_asked.front().wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

Picture FrameMaker::take()
{
    auto frame = std::move(m_asked.front());
    m_asked.pop_front();
    return frame.get();
}

void FrameMaker::giveUp()
{
    m_progress.givenUp = m_progress.asked.load();
    m_asked.clear();
}

void FrameMaker::hurry()
{
    m_progress.hurried = m_progress.asked.load();
}

} // namespace vantry
