#include "model/Readiness.h"

#include "capture/ClipFolder.h"
#include "capture/DiskRoom.h"
#include "model/AppModel.h"
#include "model/CaptureDevices.h"
#include "model/Coroutines.h"
#include "model/RoomText.h"

#include <chrono>
#include <system_error>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr auto interval = 5s;

} // namespace

Readiness::Readiness(AppModel& model)
    : m_model(model)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &Readiness::look);
    connect(&model, &AppModel::phaseChanged, this, &Readiness::look);
    connect(model.settings(), &Settings::displayIDChanged, this, &Readiness::look);
}

Readiness::~Readiness()
{
    m_worker.finish();
}

void Readiness::watch()
{
    m_timer.start();
    look();
}

/// A look that waits for a disk is not joined by others. The root is made with the first recording; until then the disk is that of
/// the folder around it.
void Readiness::look()
{
    if (!m_timer.isActive() || m_model.phase() != Phase::setup())
        return;
    if (!m_model.screen())
        return take({ tr("There is no screen that could be recorded. Connect one, or start Vantry in a desktop session."), {} });
    static_cast<void>(m_worker.tryPost([this, folder = m_model.root(), rate = bytesPerSecond(*m_model.screen())] {
        Look look;
        try {
            const fs::path there = checkRecordingsFolder(folder);
            look.room = roomText(DiskRoom(there).bytesForClips(), rate);
        } catch (const std::exception& error) {
            look.problem = describe(error);
        }
        QMetaObject::invokeMethod(
            this, [this, look] { take(look); }, Qt::QueuedConnection);
    }));
}

void Readiness::take(const Look& look)
{
    if (look.problem == m_problem && look.room == m_room)
        return;
    m_problem = look.problem;
    m_room = look.room;
    Q_EMIT changed();
}

} // namespace vantry
