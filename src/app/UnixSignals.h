#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace vantry {

/// Turns the first SIGINT, SIGTERM or SIGHUP into a signal on the main thread, so that what runs can be ended in order. The second
/// one ends the process at once. There is one at a time.
class UnixSignals : public QObject {
    Q_OBJECT

public:
    UnixSignals();
    ~UnixSignals() override;

Q_SIGNALS:
    void caught(int number);

private:
    void read();

    int m_pipe[2]{ -1, -1 };
    QSocketNotifier m_notifier{ QSocketNotifier::Read };
};

} // namespace vantry
