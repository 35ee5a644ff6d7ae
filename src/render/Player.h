#pragma once

#include "media/Picture.h"
#include "render/PlayerItem.h"

#include <QObject>

#include <cstdint>
#include <memory>

namespace vantry {

class PlayerEngine;

/// Plays a composition, picture and sound, and shows any of its frames. What it shows at a time is the frame that an export has
/// there. Belongs to the main thread, which never waits for it: the work is done on threads of its own. Times are project seconds.
class Player : public QObject {
    Q_OBJECT

public:
    enum class State {
        Empty, ///< There is no item.
        Paused,
        Playing,
    };
    Q_ENUM(State)

    explicit Player(QObject* parent = nullptr);
    ~Player() override;

    /// Shows this from now on, at `time`; the picture stays until the item's own is there. If it was playing it plays on, and
    /// without a jump when that is about where it is.
    void setItem(std::shared_ptr<const PlayerItem> item, double time);

    /// Nothing is shown any more.
    void clear();

    /// Goes on from `time`, at the end from the beginning. At the end it pauses by itself. Nothing happens without an item.
    void play();
    void pause();

    /// Shows the frame at `time`, beyond the end the last one; a time that is negative or no number is 0. When seeks come faster
    /// than frames can be made, what is shown on the way is near enough; the last one is exact. Goes on playing from there if it
    /// was. Nothing happens without an item.
    void seek(double time);

    State state() const { return m_state; }

    /// Where it is: while it plays the time of the frame that is shown, otherwise the time that was asked for, even beyond the end.
    double time() const { return m_time; }

    /// Of the item; 0 without one.
    double length() const;

    /// What is shown; null until there is something.
    const Picture& picture() const { return m_picture; }

    /// The picture is not yet the one that was asked for last.
    bool isSeeking() const { return m_isSeeking; }

Q_SIGNALS:
    void stateChanged();
    void timeChanged(double seconds); ///< At each tenth of a second that is played, and whenever it was set; not when it is empty.
    void pictureChanged();
    void itemChanged();
    void failed(const QString& description); ///< Playback has stopped. Once for an item, and once more whenever it is played.

private:
    enum class From { Time, WhereItPlays };

    void ask(From from = From::Time);
    void takeReport();
    void show(const Picture& picture);
    void advance(std::int64_t frame);
    void stop(double time);
    void setState(State state);
    void setTime(double time);

    std::shared_ptr<const PlayerItem> m_item;
    State m_state = State::Empty;
    double m_time = 0;
    Picture m_picture;
    bool m_isSeeking = false;
    bool m_hasFailed = false; ///< And has said so.
    std::int64_t m_tick = 0; ///< The tenth of a second that was told last.
    std::uint64_t m_order = 0; ///< The number of what the engine was told last.
    std::uint64_t m_itemOrder = 0; ///< The first one of this item; what the engine reports of earlier ones is of no interest.

    std::unique_ptr<PlayerEngine> m_engine;
};

} // namespace vantry
