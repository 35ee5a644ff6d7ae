#include "model/OverlayPictures.h"

#include <QCoroFuture>
#include <QPointer>

namespace vantry {

QCoro::Task<OverlayImages> OverlayPictures::of(std::vector<Overlay> overlays, std::stop_token cancel)
{
    const QPointer<OverlayPictures> self(this);
    OverlayImages images;
    for (const Overlay& overlay : overlays) {
        if (!self || cancel.stop_requested())
            break;
        if (auto image = co_await m_renderer.image(overlay))
            images[overlay.id] = *std::move(image);
    }
    co_return images;
}

} // namespace vantry
