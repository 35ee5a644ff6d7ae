#include "render/Player.h"

#include "render/PlayerEngine.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantry {

namespace {

/// Whoever wants to go on from where it plays knows that from what was told last, a tenth of a second ago or a little more.
constexpr double nearEnough = 0.25;

constexpr std::int64_t framesPerTick = framesPerSecond / 10;

/// Beyond every end; keeps the arithmetic in its range.
constexpr double latestTime = 1e7;

double validTime(double time)
{
    return time > 0 ? std::min(time, latestTime) : 0; // Not for NaN either.
}

} // namespace

Player::Player(QObject* parent)
    : QObject(parent)
    , m_engine(
          std::make_unique<PlayerEngine>([this] { QMetaObject::invokeMethod(this, &Player::takeReport, Qt::QueuedConnection); }))
{
}

Player::~Player() = default;

void Player::setItem(std::shared_ptr<const PlayerItem> item, double time)
{
    m_item = std::move(item);
    m_hasFailed = false;
    const bool goesOn = std::abs(validTime(time) - m_time) < nearEnough;
    Q_EMIT itemChanged();
    if (m_state == State::Empty)
        setState(State::Paused);
    setTime(validTime(time));
    ask(goesOn ? From::WhereItPlays : From::Time);
    m_itemOrder = m_order;
}

void Player::clear()
{
    if (m_state == State::Empty)
        return;
    m_item.reset();
    ask();
    m_itemOrder = m_order;
    m_isSeeking = false;
    Q_EMIT itemChanged();
    setState(State::Empty);
    m_time = 0; // Which is no place where somebody went.
    show(Picture());
}

void Player::play()
{
    if (m_state != State::Paused)
        return;
    m_hasFailed = false;
    setState(State::Playing);
    if (m_time >= length())
        setTime(0);
    ask();
}

void Player::pause()
{
    if (m_state != State::Playing)
        return;
    setState(State::Paused);
    setTime(m_time);
    ask();
}

void Player::seek(double time)
{
    if (!m_item)
        return;
    setTime(validTime(time));
    ask();
}

double Player::length() const
{
    return m_item ? seconds(m_item->plan.duration) : 0;
}

/// Tells the engine what is wanted now.
void Player::ask(From from)
{
    m_isSeeking = true;
    m_engine->follow({ .number = ++m_order,
        .item = m_item,
        .time = timelineTime(m_time),
        .isPlaying = m_state == State::Playing,
        .goesOn = from == From::WhereItPlays });
}

void Player::takeReport()
{
    const auto report = m_engine->takeReport();
    if (!report || report->order < m_itemOrder)
        return;
    if (report->order != m_order) {
        // Of a seek that was overtaken: something to look at while the playhead is dragged.
        if (report->event == PlayerEngine::Event::Shown)
            show(report->picture);
        return;
    }
    m_isSeeking = false;
    if (report->picture)
        show(report->picture);
    switch (report->event) {
    case PlayerEngine::Event::Shown:
    case PlayerEngine::Event::Played:
        if (m_state == State::Playing)
            advance(report->frame);
        break;
    case PlayerEngine::Event::Ended:
        stop(length());
        break;
    case PlayerEngine::Event::Failed:
        stop(m_time);
        if (!std::exchange(m_hasFailed, true))
            Q_EMIT failed(QString::fromStdString(report->problem));
        break;
    }
}

void Player::show(const Picture& picture)
{
    if (std::exchange(m_picture, picture) != picture)
        Q_EMIT pictureChanged();
}

void Player::advance(std::int64_t frame)
{
    m_time = std::max(m_time, seconds(frame * frameDuration));
    if (std::exchange(m_tick, frame / framesPerTick) != frame / framesPerTick)
        Q_EMIT timeChanged(m_time);
}

/// Playback has ended by itself.
void Player::stop(double time)
{
    if (m_state != State::Playing)
        return;
    setState(State::Paused);
    setTime(time);
}

void Player::setState(State state)
{
    if (std::exchange(m_state, state) != state)
        Q_EMIT stateChanged();
}

void Player::setTime(double time)
{
    m_time = time;
    m_tick = static_cast<std::int64_t>(time * framesPerSecond) / framesPerTick;
    Q_EMIT timeChanged(time);
}

} // namespace vantry
