#include "overlayhelper/Document.h"

namespace vantry {

QString documentOf(const QString& fragment, double cssWidth)
{
    // The viewport is a whole number of pixels wide; the width, which may be a fraction, is the root's. The font face takes the few
    // emoji that the interface's font has in black.
    const auto head =
        QStringLiteral(R"(<!doctype html><html><head><meta charset="utf-8"><meta http-equiv="Content-Security-Policy" )"
                       R"(content="default-src 'none'; style-src 'unsafe-inline'; img-src data:; font-src data:"><style>
html,body{margin:0;background:transparent}
body{padding:28px;box-sizing:border-box;font-family:-apple-system,system-ui,sans-serif;-webkit-font-smoothing:antialiased}
html{width:%1px;overflow:hidden}
@font-face{font-family:-apple-system;src:local("Noto Color Emoji");unicode-range:U+2600,U+2665,U+26A0,U+2764,U+2B1C,U+FE0F}
*,::before,::after{animation-play-state:paused!important;transition:none!important}
</style></head><body>)");
    return head.arg(cssWidth, 0, 'g', 17) + fragment + QStringLiteral("</body></html>");
}

QString freezingScript()
{
    return QStringLiteral("for(const a of document.getAnimations()){try{a.finish()}catch(e){a.pause();a.currentTime=0}}"
                          "for(const s of document.querySelectorAll('svg'))s.pauseAnimations();");
}

} // namespace vantry
