#pragma once

#include "base/Worker.h"
#include "project/Project.h"
#include "render/Bitmap.h"
#include "render/OverlayHelper.h"

#include <QFuture>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace vantry {

/// Makes bitmaps of overlays' fragments, in a helper process that starts with the first one and ends when it has had nothing to do
/// for a while. A fragment that the helper dies of or hangs at has no bitmap; the next one gets a new helper. What was made is kept
/// until it is forgotten, and what could not be made is not tried again. Belongs to the main thread, which never waits for it: the
/// work is done on a thread of its own, one fragment after the other. Destroying it gives up what is still asked for.
class HTMLRenderer {
public:
    /// Nothing where it could not be rendered.
    using Image = std::optional<Bitmap>;

    struct Options {
        std::filesystem::path program = OverlayHelper::program();
        std::chrono::milliseconds longestRender{ 8000 }; ///< The helper is given up then; it gives a fragment up before.
        std::chrono::milliseconds idle{ 30000 }; ///< After the last rendering.
    };

    HTMLRenderer();
    explicit HTMLRenderer(Options options);
    ~HTMLRenderer();

    HTMLRenderer(const HTMLRenderer&) = delete;
    HTMLRenderer& operator=(const HTMLRenderer&) = delete;

    /// The width at which an overlay is laid out, in CSS pixels: those of a frame that is 1920 wide.
    static double cssWidth(const Overlay& overlay) { return overlay.width * 1920; }

    /// What a bitmap depends on, as one text: overlays with the same key share a bitmap.
    static std::string renderKey(const Overlay& overlay);

    /// The overlay's bitmap, twice as wide in pixels as its CSS width. Never throws.
    QFuture<Image> image(const Overlay& overlay);

    /// Of all the bitmaps that are kept.
    std::int64_t pixels() const;

    /// Lets go of all bitmaps but these, by render key. Those under way stay.
    void forgetAllBut(const std::set<std::string>& keys);

private:
    Image render(const std::string& key, const std::string& fragment, double cssWidth);
    Image renderWithHelper(const std::string& key, const std::string& fragment, double cssWidth);
    void blame(const std::string& key);
    void endHelper() { m_helper.reset(); }

    const Options m_options;
    const WakeUp m_giveUp;

    // Belongs to the main thread.
    QTimer m_idle;
    std::unordered_map<std::string, QFuture<Image>> m_cache; ///< By render key; those under way too.

    // Belongs to the worker.
    std::optional<OverlayHelper> m_helper;
    std::unordered_set<std::string> m_hopeless; ///< By render key: took too long or was refused.
    std::unordered_map<std::string, int> m_deaths; ///< By render key: how often the helper ended meanwhile.

    Worker m_worker{ "vantry.overlays" };
};

} // namespace vantry
