#pragma once

#include <QObject>

namespace vantry {

/// Where the application is. A value: equal phases are the same phase.
class Phase {
    Q_GADGET
    Q_PROPERTY(Kind kind READ kind)
    Q_PROPERTY(int secondsLeft READ secondsLeft)

public:
    enum class Kind { Setup, Countdown, Recording, Saving, Editing };
    Q_ENUM(Kind)

    Phase() = default;
    static constexpr Phase setup() { return Phase(Kind::Setup); }
    static constexpr Phase countdown(int secondsLeft) { return Phase(Kind::Countdown, secondsLeft); }
    static constexpr Phase recording() { return Phase(Kind::Recording); }
    static constexpr Phase saving() { return Phase(Kind::Saving); }
    static constexpr Phase editing() { return Phase(Kind::Editing); }

    Kind kind() const { return m_kind; }

    /// Until the recording starts; 0 in every phase but the countdown.
    int secondsLeft() const { return m_secondsLeft; }

    bool isCountdown() const { return m_kind == Kind::Countdown; }

    bool operator==(const Phase&) const = default;

private:
    constexpr explicit Phase(Kind kind, int secondsLeft = 0)
        : m_kind(kind)
        , m_secondsLeft(secondsLeft)
    {
    }

    Kind m_kind = Kind::Setup;
    int m_secondsLeft = 0;
};

} // namespace vantry
