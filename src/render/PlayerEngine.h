#pragma once

#include "base/Worker.h"
#include "render/FrameMaker.h"
#include "render/PlaybackClock.h"
#include "render/PlayerItem.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace vantry {

/// What works behind a `Player`: a thread that shows the frame that is wanted and then those after it, each at its time. It is told
/// what is wanted as a whole, and only the newest counts; of its reports, too, only the newest is kept. Safe to use from any
/// thread.
class PlayerEngine {
public:
    struct Order {
        std::uint64_t number = 0; ///< Grows from order to order.
        std::shared_ptr<const PlayerItem> item; ///< May be none.
        MediaTime time{};
        bool isPlaying = false;
        bool goesOn = false; ///< An engine that plays already goes on from where it is, instead of `time`.
    };

    enum class Event {
        Shown, ///< The frame that was ordered.
        Played, ///< One after it.
        Ended, ///< The item's end was played.
        Failed,
    };

    struct Report {
        std::uint64_t order = 0;
        Event event = Event::Shown;
        std::int64_t frame = 0; ///< The one that is shown.
        Picture picture; ///< Its picture; null when none was made.
        std::string problem{}; ///< What failed.
    };

    /// `onReport` is called on the engine's thread when there is a report after there was none.
    explicit PlayerEngine(std::function<void()> onReport);
    ~PlayerEngine();

    void follow(Order order);
    std::optional<Report> takeReport();

private:
    void work();
    void carryOut(const Order& order);
    void play(const Order& order, std::int64_t shown);
    bool isOvertaken(const Order& order) const;
    bool waitFor(MediaTime time, const Order& order);
    void report(Report report);

    const std::function<void()> m_onReport;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;

    // Guarded by the mutex.
    Order m_order; ///< The newest.
    std::optional<Report> m_report;

    // Belong to the worker.
    std::uint64_t m_carriedOut = 0;
    std::shared_ptr<const PlayerItem> m_item; ///< Whose frames are made.
    FrameMaker m_frames;
    PlaybackClock m_clock;

    Worker m_worker;
};

} // namespace vantry
