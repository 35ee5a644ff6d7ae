#pragma once

#include <QString>

namespace vantry {

/// One line on standard error that says how far something is. On a terminal it is written over; elsewhere, as in a log, it appears
/// anew only now and then.
class ProgressLine {
public:
    ProgressLine();
    ~ProgressLine() { end(); }

    /// `fraction` is from 0 to 1.
    void show(const QString& text, double fraction);

    /// What is printed next starts on a line of its own.
    void end();

private:
    const bool m_terminal;
    int m_lastTenth = -1;
    bool m_open = false;
};

} // namespace vantry
