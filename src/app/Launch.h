#pragma once

#include "app/CommandLine.h"
#include "capture/HotKeys.h"
#include "model/AppModel.h"

#include <QCoroTask>
#include <QObject>

namespace vantry {

/// The start-up of the application with its window, which runs once.
class Launch : public QObject {
    Q_OBJECT

public:
    /// The model outlives the start-up.
    Launch(AppModel& model, CommandLine line);

    /// A second call does nothing.
    void start();

private:
    QCoro::Task<> run();
    QCoro::Task<> autorecord(double wait);

    AppModel& m_model;
    Notice m_keysNotice;
    HotKeys m_hotKeys;
    const CommandLine m_line;
    bool m_launched = false;
};

} // namespace vantry
