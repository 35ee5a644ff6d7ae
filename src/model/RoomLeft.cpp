#include "model/RoomLeft.h"

#include "capture/DiskRoom.h"
#include "model/AppModel.h"
#include "model/ChangeTo.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <limits>

namespace vantry {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr auto lookInterval = 2s;
constexpr auto shortestView = 5s;
constexpr double shortTime = 30 * 60; ///< seconds

std::uintmax_t bytesIn(const fs::path& folder)
{
    std::uintmax_t sum = 0;
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
        std::error_code isGone;
        if (const auto size = file->file_size(isGone); !isGone)
            sum += size;
    }
    return sum;
}

} // namespace

std::optional<double> secondsLeft(const RoomTaken& before, const RoomTaken& now)
{
    if (now.folder <= before.folder || now.time - before.time < shortestView)
        return std::nullopt;
    const double bytesPerSecond = static_cast<double>(now.folder - before.folder) / seconds(now.time - before.time);
    return static_cast<double>(now.room) / bytesPerSecond;
}

RoomLeft::RoomLeft(QObject* parent)
    : QObject(parent)
{
    m_timer.setInterval(lookInterval);
    connect(&m_timer, &QTimer::timeout, this, &RoomLeft::look);
}

void RoomLeft::setModel(AppModel* model)
{
    if (!changeTo(m_model, model))
        return;
    connect(model, &AppModel::phaseChanged, this, &RoomLeft::follow);
    Q_EMIT modelChanged();
    follow();
}

void RoomLeft::follow()
{
    const bool isRecording = m_model->phase() == Phase::recording();
    if (isRecording == m_timer.isActive())
        return;
    m_before.reset();
    if (changeTo(m_seconds, std::nullopt))
        Q_EMIT changed();
    if (!isRecording)
        return m_timer.stop();
    m_timer.start();
    look();
}

void RoomLeft::look()
{
    static_cast<void>(m_worker.tryPost([self = QPointer(this), folder = *m_model->folder()] {
        constexpr auto endless = std::numeric_limits<std::uintmax_t>::max();
        const auto room = DiskRoom(folder).bytesForClips().value_or(endless);
        const RoomTaken now{ .folder = bytesIn(folder), .room = room, .time = HostClock::now() };
        QMetaObject::invokeMethod(
            qApp,
            [self, now] {
                if (self && self->m_timer.isActive())
                    self->take(now);
            },
            Qt::QueuedConnection);
    }));
}

void RoomLeft::take(const RoomTaken& now)
{
    if (!m_before)
        m_before = now;
    if (changeTo(m_seconds, secondsLeft(*m_before, now)))
        Q_EMIT changed();
}

bool RoomLeft::isShort() const
{
    return m_seconds && *m_seconds < shortTime;
}

double RoomLeft::fraction() const
{
    return m_seconds ? std::min(*m_seconds / shortTime, 1.0) : 1;
}

QString RoomLeft::text() const
{
    const int minutes = static_cast<int>(std::min(m_seconds.value_or(shortTime), shortTime) / 60);
    return minutes > 0 ? tr("About %1 min left").arg(minutes) : tr("Less than a minute left");
}

} // namespace vantry
