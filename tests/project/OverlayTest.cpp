#include "project/Project.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

/// The whole of an overlay but its id.
Overlay expected(OverlayKind kind, double duration, double x, double y, double width, const std::string& html)
{
    return { .id = {},
        .start = 12.5,
        .duration = duration,
        .kind = kind,
        .text = "A < B & \"C\"",
        .html = html,
        .x = x,
        .y = y,
        .width = width };
}

Overlay made(OverlayKind kind)
{
    auto overlay = Overlay::make(kind, "A < B & \"C\"", 12.5);
    overlay.id = {};
    return overlay;
}

} // namespace

TEST(Overlay, aNewOneHasTheLookOfItsKindAndItsTextEscaped)
{
    EXPECT_EQ(made(OverlayKind::bubble),
        expected(OverlayKind::bubble, 4, 0.5, 0.25, 0.42,
            R"html(<div style="text-align:center"><div style="display:inline-block;position:relative;max-width:100%;background:#fff;color:#14141a;font:700 46px/1.2 -apple-system,system-ui;padding:24px 34px;border-radius:30px;box-shadow:0 12px 34px rgba(0,0,0,.35)">A &lt; B &amp; "C"<span style="position:absolute;left:50%;bottom:-20px;margin-left:-18px;border:18px solid transparent;border-top:22px solid #fff;border-bottom:0"></span></div></div>)html"));
    EXPECT_EQ(made(OverlayKind::text),
        expected(OverlayKind::text, 5, 0.5, 0.5, 0.7,
            R"html(<div style="text-align:center"><div style="display:inline-block;max-width:100%;background:linear-gradient(135deg,#5b5bf7,#d946ef);color:#fff;font:800 68px/1.15 -apple-system,system-ui;padding:30px 48px;border-radius:26px;box-shadow:0 16px 44px rgba(0,0,0,.4)">A &lt; B &amp; "C"</div></div>)html"));
    EXPECT_EQ(made(OverlayKind::lowerThird),
        expected(OverlayKind::lowerThird, 6, 0.35, 0.87, 0.62,
            R"html(<div style="display:inline-block;max-width:100%;background:rgba(14,14,20,.88);color:#fff;font:600 42px/1.3 -apple-system,system-ui;padding:18px 32px 18px 26px;border-left:10px solid #ff3b5c;border-radius:12px;box-shadow:0 10px 28px rgba(0,0,0,.35)">A &lt; B &amp; "C"</div>)html"));
}

TEST(Overlay, everyNewOneIsItsOwn)
{
    EXPECT_NE(Overlay::make(OverlayKind::text, "a", 0).id, Overlay::make(OverlayKind::text, "a", 0).id);
}

} // namespace vantry
