#include "model/OverlayPictures.h"

#include "model/AppModel.h"

#include <QCoroFuture>
#include <QFutureWatcher>
#include <QPointer>
#include <QPromise>

#include <memory>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// Done when the image is, or as soon as nobody wants it any more: it may take as long as a helper that hangs.
QCoro::Task<> imageOrCancel(QFuture<HTMLRenderer::Image> image, std::stop_token cancel)
{
    const auto either = std::make_shared<QPromise<void>>();
    either->start();
    const auto finish = [either] { either->finish(); };
    QFutureWatcher<HTMLRenderer::Image> watcher;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &watcher, finish);
    watcher.setFuture(image);
    const std::stop_callback onCancel(cancel, finish);
    co_await either->future();
}

} // namespace

OverlayPictures::OverlayPictures(AppModel& model, std::int64_t limit)
    : m_limit(limit)
    , m_notice(model.notices())
{
    connect(&model, &AppModel::folderChanged, this, [this] { m_notice.clear(); });
}

QCoro::Task<OverlayImages> OverlayPictures::of(std::vector<Overlay> overlays, std::stop_token cancel)
{
    const QPointer<OverlayPictures> self(this);
    Selection selection;
    for (const Overlay& overlay : overlays) {
        if (!self || cancel.stop_requested())
            co_return selection.images;
        const std::string key = HTMLRenderer::renderKey(overlay);
        if (const auto known = m_tooMuch.find(key); known != m_tooMuch.end() && !hasRoom(selection, key, known->second)) {
            ++selection.leftOut;
            continue;
        }
        const auto image = m_renderer.image(overlay);
        if (!image.isFinished())
            co_await imageOrCancel(image, cancel);
        if (!self || !image.isFinished())
            co_return selection.images;
        if (const auto bitmap = image.result())
            add(selection, overlay, *bitmap);
    }
    if (self)
        tell(selection, overlays.size());
    co_return selection.images;
}

bool OverlayPictures::hasRoom(const Selection& selection, const std::string& key, std::int64_t pixels) const
{
    return selection.keys.contains(key) || selection.pixels + pixels <= m_limit;
}

void OverlayPictures::add(Selection& selection, const Overlay& overlay, const Bitmap& bitmap)
{
    const std::string key = HTMLRenderer::renderKey(overlay);
    if (!hasRoom(selection, key, bitmap.pixels())) {
        m_tooMuch[key] = bitmap.pixels();
        ++selection.leftOut;
    } else {
        m_tooMuch.erase(key);
        if (selection.keys.insert(key).second)
            selection.pixels += bitmap.pixels();
        selection.images[overlay.id] = bitmap;
    }
    if (m_renderer.pixels() > m_limit)
        m_renderer.forgetAllBut(selection.keys); // What earlier versions of the project, and other projects, had.
}

void OverlayPictures::tell(const Selection& selection, std::size_t overlays)
{
    if (selection.leftOut > 0)
        m_notice.warn(
            u"Left out %1 of %2 overlays: together they would need too much memory"_s.arg(selection.leftOut).arg(overlays));
    else
        m_notice.clear();
}

} // namespace vantry
