#include "render/PlayerEngine.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace vantry {

namespace {

/// Enough that no hiccup of a stage shows.
constexpr std::size_t framesAhead = 5;

/// Frames that were just shown are wanted again when a project is rebuilt or somebody steps back.
constexpr std::size_t decodedPictures = 12;

/// The clock may change its mind.
constexpr HostDuration longestWait = std::chrono::milliseconds(10);

/// When frames take too long, the next one is made for a time that is so much later, so that it comes in time.
constexpr MediaTime longestSkip = std::chrono::milliseconds(100);

} // namespace

PlayerEngine::PlayerEngine(std::function<void()> onReport)
    : m_onReport(std::move(onReport))
    , m_frames("player", { .kept = decodedPictures })
    // One job more than runs is enough: it carries out whatever is the newest order then.
    , m_worker("player", { .capacity = 1, .whenFull = WhenFull::Drop })
{
}

PlayerEngine::~PlayerEngine()
{
    follow({ .number = UINT64_MAX });
}

void PlayerEngine::follow(Order order)
{
    m_frames.hurry(); // Before the order is seen: what is made for it has to be exact.
    {
        const std::lock_guard lock(m_mutex);
        m_order = std::move(order);
    }
    m_changed.notify_all();
    static_cast<void>(m_worker.tryPost([this] { work(); }));
}

std::optional<PlayerEngine::Report> PlayerEngine::takeReport()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_report, std::nullopt);
}

void PlayerEngine::work()
{
    Order order;
    {
        const std::lock_guard lock(m_mutex);
        order = m_order;
    }
    if (std::exchange(m_carriedOut, order.number) == order.number)
        return;
    try {
        carryOut(order);
    } catch (const std::exception& error) {
        m_clock.stop();
        report({ .order = order.number, .event = Event::Failed, .problem = error.what() });
    }
}

void PlayerEngine::carryOut(const Order& order)
{
    m_frames.giveUp();
    if (!order.isPlaying)
        m_clock.stop();
    if (!order.item)
        return;
    if (order.item != m_item) {
        m_frames.setComposition(order.item->plan, order.item->instruction);
        m_item = order.item;
    }
    const auto& plan = order.item->plan;
    const bool goesOn = order.goesOn && m_clock.isRunning();
    const auto frame = plan.frameAt(goesOn ? m_clock.position() : order.time);
    m_frames.ask(frame);
    report({ .order = order.number, .frame = frame, .picture = m_frames.take() });
    if (!order.isPlaying || isOvertaken(order))
        return;
    if (goesOn)
        m_clock.goOnWith(plan);
    else
        m_clock.start(plan, order.time);
    play(order, frame);
}

/// From the frame that is shown to the end, or until something else is wanted.
void PlayerEngine::play(const Order& order, std::int64_t shown)
{
    const auto& plan = order.item->plan;
    const auto count = plan.frameCount();
    std::int64_t toAsk = shown + 1;
    std::deque<std::int64_t> asked;
    for (;;) {
        for (; toAsk < count && asked.size() < framesAhead; ++toAsk) {
            m_frames.ask(toAsk);
            asked.push_back(toAsk);
        }
        if (asked.empty())
            break;
        const auto frame = asked.front();
        asked.pop_front();
        const bool wasReady = m_frames.isReady();
        auto picture = m_frames.take();
        if (!waitFor(frame * frameDuration, order))
            return;
        report({ .order = order.number, .event = Event::Played, .frame = frame, .picture = std::move(picture) });
        const auto late = m_clock.position() - frame * frameDuration;
        if (!wasReady && late > frameDuration) {
            m_frames.giveUp();
            asked.clear();
            toAsk = std::max(frame, plan.frameAt(m_clock.position() + std::min(late, longestSkip))) + 1;
        }
    }
    if (!waitFor(plan.duration, order))
        return;
    m_clock.stop();
    report({ .order = order.number, .event = Event::Ended });
}

bool PlayerEngine::isOvertaken(const Order& order) const
{
    const std::lock_guard lock(m_mutex);
    return m_order.number != order.number;
}

/// Until playback is there. False when something else is wanted meanwhile.
bool PlayerEngine::waitFor(MediaTime time, const Order& order)
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        if (m_order.number != order.number)
            return false;
        const auto missing = time - m_clock.position();
        if (missing <= MediaTime(0))
            return true;
        m_changed.wait_for(lock, std::min(longestWait, std::chrono::ceil<HostDuration>(missing)));
    }
}

void PlayerEngine::report(Report report)
{
    bool isFirst = false;
    {
        const std::lock_guard lock(m_mutex);
        isFirst = !m_report;
        if (!isFirst && m_report->order == report.order && !report.picture) {
            report.picture = m_report->picture; // Nobody has seen it yet.
            report.frame = m_report->frame;
        }
        m_report = std::move(report);
    }
    if (isFirst)
        m_onReport();
}

} // namespace vantry
