#include "model/PreviewFlow.h"

#include "base/Background.h"
#include "media/MediaTime.h"
#include "model/AppModel.h"
#include "model/Coroutines.h"
#include "project/Timeline.h"

#include <QCoroFuture>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// The output frame that is shown at a time, or the last one.
int frameAt(double time, double length)
{
    const double last = std::max(std::ceil((length - layoutLookupSlack) * framesPerSecond) - 1, 0.0);
    return static_cast<int>(std::clamp((time + layoutLookupSlack) * framesPerSecond, 0.0, last));
}

} // namespace

PreviewFlow::PreviewFlow(AppModel& model)
    : m_model(model)
{
    connect(&m_player, &Player::pictureChanged, this, &PreviewFlow::pictureChanged);
    connect(&m_player, &Player::itemChanged, this, &PreviewFlow::lengthChanged);
    connect(&m_player, &Player::timeChanged, &m_model, &AppModel::setPlayhead);
    connect(&m_player, &Player::stateChanged, this, &PreviewFlow::stateChanged);
    connect(&m_player, &Player::failed, this, &PreviewFlow::fail);
    connect(&m_model, &AppModel::phaseChanged, this, [this] {
        if (!m_model.isIdle())
            m_player.pause();
    });
}

PreviewFlow::~PreviewFlow()
{
    m_rebuild.request_stop();
}

void PreviewFlow::refresh()
{
    if (!m_model.project() || !m_model.folder() || m_model.project()->clips.empty())
        return clear();
    m_rebuild.request_stop();
    m_rebuild = std::stop_source();
    const std::stop_token overtaken = m_rebuild.get_token();
    launch(
        rebuild(*m_model.project(), *m_model.folder(), overtaken), [flow = QPointer(this), overtaken](const QString& description) {
            if (flow && !overtaken.stop_requested())
                flow->fail(description);
        });
}

void PreviewFlow::clear()
{
    m_rebuild.request_stop();
    m_player.clear();
}

QCoro::Task<> PreviewFlow::rebuild(Project project, std::filesystem::path folder, std::stop_token overtaken)
{
    const QPointer<PreviewFlow> self(this);
    OverlayImages images = co_await m_model.overlayImages(overtaken);
    if (!self || overtaken.stop_requested())
        co_return;
    const QFuture<Item> building = build(std::move(project), std::move(folder), std::move(images), overtaken);
    Item item = co_await building;
    if (self && !overtaken.stop_requested())
        install(std::move(item));
}

/// Null when it was overtaken while it waited.
QFuture<PreviewFlow::Item> PreviewFlow::build(
    Project project, std::filesystem::path folder, OverlayImages images, std::stop_token overtaken)
{
    return inBackground(m_worker,
        [project = std::move(project), folder = std::move(folder), images = std::move(images),
            overtaken = std::move(overtaken)]() mutable -> Item {
            if (overtaken.stop_requested())
                return nullptr;
            return makePlayerItem(std::move(project), folder, std::move(images));
        });
}

void PreviewFlow::install(Item item)
{
    m_player.setItem(std::move(item), m_model.pendingSeek().value_or(m_model.playhead()));
    m_model.setPendingSeek(std::nullopt);
}

void PreviewFlow::fail(const QString& description)
{
    m_model.setAlert("Preview failed: "_L1 + description);
}

void PreviewFlow::seek(double time)
{
    m_player.seek(time);
    m_model.setPlayhead(time); // Also when there is nothing to play.
}

void PreviewFlow::toggle()
{
    if (isPlaying())
        m_player.pause();
    else
        m_player.play();
}

void PreviewFlow::step(int frames)
{
    m_player.pause();
    const int now = frameAt(m_model.playhead(), length());
    const int target = frameAt(double(now + frames) / framesPerSecond, length());
    if (target != now)
        seek(double(target) / framesPerSecond);
}

void PreviewFlow::hold()
{
    m_playsOn = isPlaying();
    m_player.pause();
}

void PreviewFlow::release()
{
    if (std::exchange(m_playsOn, false))
        m_player.play();
}

} // namespace vantry
