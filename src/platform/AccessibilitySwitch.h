#pragma once

namespace vantry {

/// The desktop's switch that has programs say what is in their windows. Only this one: the one for screen readers is left alone.
/// Its functions wait for the desktop, a second at the most. One thread at a time.
class AccessibilitySwitch {
public:
    AccessibilitySwitch() = default;

    /// Switches off what was switched on here.
    ~AccessibilitySwitch();

    AccessibilitySwitch(const AccessibilitySwitch&) = delete;
    AccessibilitySwitch& operator=(const AccessibilitySwitch&) = delete;

    static bool isOn();

    /// Throws AppError when the desktop has none, or refuses.
    void switchOn();

private:
    bool m_wasOff = false;
};

} // namespace vantry
