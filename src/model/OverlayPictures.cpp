#include "model/OverlayPictures.h"

#include <QCoroFuture>
#include <QFutureWatcher>
#include <QPointer>
#include <QPromise>

#include <memory>

namespace vantry {

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

QCoro::Task<OverlayImages> OverlayPictures::of(std::vector<Overlay> overlays, std::stop_token cancel)
{
    const QPointer<OverlayPictures> self(this);
    OverlayImages images;
    for (const Overlay& overlay : overlays) {
        if (!self || cancel.stop_requested())
            break;
        const auto image = m_renderer.image(overlay);
        if (!image.isFinished())
            co_await imageOrCancel(image, cancel);
        if (!image.isFinished())
            break;
        if (const auto bitmap = image.result())
            images[overlay.id] = *bitmap;
    }
    co_return images;
}

} // namespace vantry
