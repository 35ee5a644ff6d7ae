#include "project/Project.h"

#include <array>
#include <string_view>
#include <utility>

namespace vantry {

namespace {

/// What a new overlay of a kind looks like, how long it stays and where it stands.
struct Template {
    std::string_view before;
    std::string_view after;
    double duration;
    double x;
    double y;
    double width;
};

/// A white box with a tail below its middle.
constexpr Template bubble{
    .before =
        R"html(<div style="text-align:center"><div style="display:inline-block;position:relative;max-width:100%;background:#fff;)html"
        R"html(color:#14141a;font:700 46px/1.2 -apple-system,system-ui;padding:24px 34px;border-radius:30px;)html"
        R"html(box-shadow:0 12px 34px rgba(0,0,0,.35)">)html",
    .after = R"html(<span style="position:absolute;left:50%;bottom:-20px;margin-left:-18px;border:18px solid transparent;)html"
             R"html(border-top:22px solid #fff;border-bottom:0"></span></div></div>)html",
    .duration = 4,
    .x = 0.5,
    .y = 0.25,
    .width = 0.42,
};

/// Heavy white text on a box that goes from violet to magenta.
constexpr Template text{
    .before = R"html(<div style="text-align:center"><div style="display:inline-block;max-width:100%;)html"
              R"html(background:linear-gradient(135deg,#5b5bf7,#d946ef);color:#fff;font:800 68px/1.15 -apple-system,system-ui;)html"
              R"html(padding:30px 48px;border-radius:26px;box-shadow:0 16px 44px rgba(0,0,0,.4)">)html",
    .after = "</div></div>",
    .duration = 5,
    .x = 0.5,
    .y = 0.5,
    .width = 0.7,
};

/// A dark caption with a red bar at its left.
constexpr Template lowerThird{
    .before = R"html(<div style="display:inline-block;max-width:100%;background:rgba(14,14,20,.88);color:#fff;)html"
              R"html(font:600 42px/1.3 -apple-system,system-ui;padding:18px 32px 18px 26px;border-left:10px solid #ff3b5c;)html"
              R"html(border-radius:12px;box-shadow:0 10px 28px rgba(0,0,0,.35)">)html",
    .after = "</div>",
    .duration = 6,
    .x = 0.35,
    .y = 0.87,
    .width = 0.62,
};

constexpr std::array templates{ bubble, text, lowerThird }; // in the order of the kinds

/// The text stands between tags only, so quotes may stay.
std::string escaped(std::string_view plain)
{
    std::string html;
    for (const char character : plain) {
        if (character == '&')
            html += "&amp;";
        else if (character == '<')
            html += "&lt;";
        else if (character == '>')
            html += "&gt;";
        else
            html += character;
    }
    return html;
}

} // namespace

Overlay Overlay::make(OverlayKind kind, std::string text, double at)
{
    const auto& look = templates.at(static_cast<std::size_t>(kind));
    auto html = std::string(look.before) + escaped(text) + std::string(look.after);
    return {
        .start = at,
        .duration = look.duration,
        .kind = kind,
        .text = std::move(text),
        .html = std::move(html),
        .x = look.x,
        .y = look.y,
        .width = look.width,
    };
}

} // namespace vantry
