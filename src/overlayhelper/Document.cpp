#include "overlayhelper/Document.h"

namespace vantry {

namespace {

const auto head = QStringLiteral(R"(<!doctype html><html><head><meta charset="utf-8"><meta http-equiv="Content-Security-Policy" )"
                                 R"(content="default-src 'none'; style-src 'unsafe-inline'; img-src data:; font-src data:">)");

} // namespace

QString stage()
{
    return head + QStringLiteral("</head></html>");
}

QString documentOf(const QString& fragment, double cssWidth)
{
    // The frame is a whole number of pixels wide; the width, which may be a fraction, is the root's.
    const auto style = QStringLiteral(R"(<style>
html,body{margin:0;background:transparent}
body{padding:28px;box-sizing:border-box;font-family:-apple-system,system-ui,sans-serif;-webkit-font-smoothing:antialiased}
html{width:%1px;overflow:hidden}
*,::before,::after{animation-play-state:paused!important;transition:none!important}
</style></head><body>)");
    return head + style.arg(cssWidth, 0, 'g', 17) + fragment + QStringLiteral("</body></html>");
}

} // namespace vantry
