#include "render/HTMLRenderer.h"

#include "base/Background.h"
#include "base/Log.h"

#include <array>
#include <charconv>
#include <limits>

namespace vantry {

namespace {

/// The shortest decimal number that reads back as the same, with a fraction in any case.
std::string decimal(double value)
{
    // The longest needs every digit that a double's exponent has room for.
    std::array<char, std::numeric_limits<double>::max_exponent10 + std::numeric_limits<double>::max_digits10 + 320> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    std::string number(text.data(), result.ptr);
    if (number.find('.') == std::string::npos)
        number += ".0";
    return number;
}

bool hasNoBitmap(const QFuture<HTMLRenderer::Image>& future)
{
    return future.isFinished() && !future.result();
}

} // namespace

HTMLRenderer::HTMLRenderer()
    : HTMLRenderer(Options())
{
}

HTMLRenderer::HTMLRenderer(Options options)
    : m_options(std::move(options))
{
    m_idle.setSingleShot(true);
    m_idle.setInterval(m_options.idle);
    QObject::connect(&m_idle, &QTimer::timeout, &m_idle, [this] { m_worker.post([this] { endHelper(); }); });
}

HTMLRenderer::~HTMLRenderer()
{
    m_giveUp.call();
    // The helper ends on the thread that it was started on.
    m_worker.post([this] { endHelper(); });
    m_worker.finish();
}

std::string HTMLRenderer::renderKey(const Overlay& overlay)
{
    return decimal(cssWidth(overlay)) + '|' + overlay.html;
}

QFuture<HTMLRenderer::Image> HTMLRenderer::image(const Overlay& overlay)
{
    auto& image = m_cache[renderKey(overlay)];
    if (!image.isValid() || hasNoBitmap(image))
        image = inBackground(m_worker, [this, html = overlay.html, width = cssWidth(overlay)] { return render(html, width); });
    return image;
}

HTMLRenderer::Image HTMLRenderer::render(const std::string& fragment, double cssWidth)
{
    if (m_giveUp.wasCalled())
        return std::nullopt;
    if (!overlays::isWithinLimits({ fragment.size(), cssWidth })) {
        warnOfMissingOverlay(overlays::Outcome::Refused);
        return std::nullopt;
    }
    Image image;
    try {
        if (!m_helper || !m_helper->isRunning())
            m_helper.emplace(m_options.program, m_giveUp);
        image = m_helper->render(fragment, cssWidth, m_options.longestRender);
    } catch (const std::exception& error) {
        qCWarning(logRender) << error.what();
        m_helper.reset();
    }
    QMetaObject::invokeMethod(&m_idle, qOverload<>(&QTimer::start), Qt::QueuedConnection);
    return image;
}

} // namespace vantry
