#include "capture/SoundHandOver.h"

#include <utility>

namespace vantry {

namespace {

/// Pieces, of one cycle each: far fewer than the queue has room for, which blocks when it is full.
constexpr int mostWaiting = 256;

} // namespace

SoundHandOver::SoundHandOver(Worker& captureQueue, Sink sink)
    : m_captureQueue(captureQueue)
    , m_sink(std::move(sink))
{
}

void SoundHandOver::take(SoundSample sample)
{
    if (m_waiting >= mostWaiting)
        return;
    ++m_waiting;
    m_captureQueue.post([this, sample = std::move(sample)]() mutable {
        m_sink(std::move(sample));
        --m_waiting;
    });
}

} // namespace vantry
