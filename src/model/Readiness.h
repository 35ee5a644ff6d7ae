#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/Worker.h"

#include <QString>
#include <QTimer>

namespace vantry {

class AppModel;

/// Whether a recording could begin now, and for how long there is room. Looked at while nothing is recorded, on a thread of its
/// own: disks take their time. Belongs to the main thread.
class Readiness : public QObject {
    Q_OBJECT

    /// What would stop a recording, and the way out; empty when nothing would.
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

    /// How much fits on the disk; empty while that is not known.
    Q_PROPERTY(QString room READ room NOTIFY changed)

public:
    /// The model outlives it.
    explicit Readiness(AppModel& model);
    ~Readiness() override;

    QString problem() const { return m_problem; }
    QString room() const { return m_room; }

    /// From now on, and every few seconds while it is set up.
    void watch();

Q_SIGNALS:
    void changed();

private:
    struct Look {
        QString problem;
        QString room;
    };

    void look();
    void take(const Look& look);

    AppModel& m_model;
    QString m_problem;
    QString m_room;
    QTimer m_timer;
    Worker m_worker{ "vantry.readiness", { .capacity = 1, .whenFull = WhenFull::Drop } };
};

} // namespace vantry
