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

constexpr int mostDeaths = 3;

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
    const std::string key = renderKey(overlay);
    auto& image = m_cache[key];
    if (!image.isValid() || hasNoBitmap(image))
        image = inBackground(
            m_worker, [this, key, html = overlay.html, width = cssWidth(overlay)] { return render(key, html, width); });
    return image;
}

std::int64_t HTMLRenderer::pixels() const
{
    std::int64_t sum = 0;
    for (const auto& [key, image] : m_cache)
        if (image.isFinished() && image.result())
            sum += image.result()->pixels();
    return sum;
}

void HTMLRenderer::forgetAllBut(const std::set<std::string>& keys)
{
    std::erase_if(m_cache, [&](const auto& entry) { return entry.second.isFinished() && !keys.contains(entry.first); });
}

HTMLRenderer::Image HTMLRenderer::render(const std::string& key, const std::string& fragment, double cssWidth)
{
    if (m_giveUp.wasCalled() || m_hopeless.contains(key))
        return std::nullopt;
    if (!overlays::isWithinLimits({ fragment.size(), cssWidth })) {
        warnOfMissingOverlay(overlays::Outcome::Refused);
        return std::nullopt;
    }
    Image image;
    try {
        image = renderWithHelper(key, fragment, cssWidth);
    } catch (const HangingHelper& error) {
        qCWarning(logRender) << error.what();
        m_helper.reset();
        m_hopeless.insert(key);
    } catch (const std::exception& error) {
        qCWarning(logRender) << error.what();
        m_helper.reset();
        blame(key);
    }
    QMetaObject::invokeMethod(&m_idle, qOverload<>(&QTimer::start), Qt::QueuedConnection);
    return image;
}

HTMLRenderer::Image HTMLRenderer::renderWithHelper(const std::string& key, const std::string& fragment, double cssWidth)
{
    if (!m_helper || !m_helper->isRunning())
        m_helper.emplace(m_options.program, m_giveUp);
    auto [outcome, bitmap] = m_helper->render(fragment, cssWidth, m_options.longestRender);
    if (outcome == overlays::Outcome::EngineDied)
        blame(key);
    else if (!bitmap)
        m_hopeless.insert(key);
    return bitmap;
}

/// What a helper ends of may be something else, so the fragment is tried again; not for ever.
void HTMLRenderer::blame(const std::string& key)
{
    if (++m_deaths[key] >= mostDeaths)
        m_hopeless.insert(key);
}

} // namespace vantry
