#pragma once

#include "base/Worker.h"

#include <atomic>
#include <cstdint>

namespace vantry {

/// The thread of one track's encoder and the samples that wait for it. What finds no room is dropped and counted. Safe to use from
/// any thread.
class EncoderQueue {
public:
    EncoderQueue(std::string name, int room);

    bool hasRoom() const { return m_waiting < m_room; }

    /// Runs `job` on the thread unless there is no room. Never waits.
    void offer(Worker::Job job);

    /// Runs `job` behind everything else, room or not. Never waits.
    void post(Worker::Job job) { m_worker.post(std::move(job)); }

    /// Waits until everything has run; nothing more is taken.
    void finish() { m_worker.finish(); }

    /// A sample that was not even offered.
    void countDropped() { ++m_dropped; }

    std::int64_t accepted() const { return m_accepted; }
    std::int64_t dropped() const { return m_dropped; }

private:
    const int m_room;
    std::atomic<int> m_waiting = 0; ///< The one that is being encoded among them.
    std::atomic<std::int64_t> m_accepted = 0;
    std::atomic<std::int64_t> m_dropped = 0;
    Worker m_worker; ///< Last: its jobs use the others.
};

} // namespace vantry
