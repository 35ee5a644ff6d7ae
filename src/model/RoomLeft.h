#pragma once

#include "base/HostTime.h"
#include "base/Worker.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <filesystem>
#include <optional>

namespace vantry {

class AppModel;

/// What a recording takes of the disk.
struct RoomTaken {
    std::uintmax_t folder = 0; ///< Bytes in the project's folder.
    std::uintmax_t room = 0; ///< Bytes that it can still take.
    HostTime time{}; ///< When that was so.
};

/// How many seconds the room lasts when all goes on as it went between the two. Nothing when that is too short to tell, or the
/// folder did not grow.
std::optional<double> secondsLeft(const RoomTaken& before, const RoomTaken& now);

/// Tells while a clip is recorded how long that can go on before the disk is full, once it is not for long any more. Belongs to
/// the main thread.
class RoomLeft : public QObject {
    Q_OBJECT
    Q_PROPERTY(vantry::AppModel* model READ model WRITE setModel NOTIFY modelChanged REQUIRED)
    Q_PROPERTY(bool isShort READ isShort NOTIFY changed)
    Q_PROPERTY(double fraction READ fraction NOTIFY changed) ///< What is left of the time from which on it is told.
    Q_PROPERTY(QString text READ text NOTIFY changed)

public:
    explicit RoomLeft(QObject* parent = nullptr);

    AppModel* model() const { return m_model; }

    /// The model outlives this.
    void setModel(AppModel* model);

    bool isShort() const;
    double fraction() const;
    QString text() const;

Q_SIGNALS:
    void modelChanged();
    void changed();

private:
    void follow();
    void look();
    void take(const RoomTaken& now);

    AppModel* m_model = nullptr;
    QTimer m_timer;
    std::optional<RoomTaken> m_before; ///< When the clip began.
    std::optional<double> m_seconds;
    Worker m_worker{ "vantry.room", { .capacity = 1, .whenFull = WhenFull::Drop } }; ///< Disks take their time.
};

} // namespace vantry
