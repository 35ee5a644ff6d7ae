#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "project/Project.h"
#include "render/HTMLRenderer.h"
#include "render/RenderInstruction.h"

#include <QCoroTask>

#include <stop_token>
#include <vector>

namespace vantry {

/// The bitmaps of a project's overlays, which previews and exports share. Belongs to the main thread, which stays free while they
/// are made.
class OverlayPictures : public QObject {
    Q_OBJECT

public:
    /// The bitmaps by overlay; an overlay that could not be rendered has none. One that was rendered before is not rendered again.
    /// When `cancel` is asked to stop, the rest is left out and not waited for.
    QCoro::Task<OverlayImages> of(std::vector<Overlay> overlays, std::stop_token cancel);

private:
    HTMLRenderer m_renderer;
};

} // namespace vantry
