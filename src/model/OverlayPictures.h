#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/OverlayProtocol.h"
#include "model/Notices.h"
#include "project/Project.h"
#include "render/HTMLRenderer.h"
#include "render/RenderInstruction.h"

#include <QCoroTask>

#include <cstdint>
#include <map>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

namespace vantry {

class AppModel;

/// The bitmaps of a project's overlays, which previews and exports share. Belongs to the main thread, which stays free while they
/// are made.
class OverlayPictures : public QObject {
    Q_OBJECT

public:
    /// Of all that are held together: as many as fill half a gigabyte.
    static constexpr std::int64_t mostPixels = 16 * overlays::largestBitmap;

    /// The model outlives it.
    explicit OverlayPictures(AppModel& model, std::int64_t limit = mostPixels);

    /// The bitmaps by overlay; an overlay that could not be rendered has none. One that was rendered before is not rendered again.
    /// Overlays for which there is no more room have none either, which a notice tells. When `cancel` is asked to stop, the rest is
    /// left out and not waited for.
    QCoro::Task<OverlayImages> of(std::vector<Overlay> overlays, std::stop_token cancel);

private:
    using Keys = std::set<std::string>;

    /// Overlays that share a bitmap count once.
    struct Selection {
        OverlayImages images{};
        Keys keys{};
        std::int64_t pixels = 0;
        std::size_t leftOut = 0;
    };

    bool hasRoom(const Selection& selection, const std::string& key, std::int64_t pixels) const;
    void add(Selection& selection, const Overlay& overlay, const Bitmap& bitmap);
    void tell(const Selection& selection, std::size_t overlays);

    const std::int64_t m_limit;
    Notice m_notice;
    std::map<std::string, std::int64_t> m_tooMuch; ///< The pixels of what was left out, by render key.
    HTMLRenderer m_renderer;
};

} // namespace vantry
