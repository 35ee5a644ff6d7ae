#include "overlayhelper/FragmentRenderer.h"

#include "overlayhelper/Document.h"
#include "overlayhelper/InertPage.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>
#include <QVariant>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr int markerHeight = 1; // CSS pixels

/// A colour that no other rendering of the last sixteen million has.
QRgb markerColour(quint32 number)
{
    return 0xff000000 | (number * 2654435761u >> 8);
}

/// As a script's literal, in brackets.
QString quoted(const QString& text)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray{ text }).toJson(QJsonDocument::Compact));
}

} // namespace

FragmentRenderer::FragmentRenderer()
{
    m_view.setAttribute(Qt::WA_DontShowOnScreen);
    m_view.setAttribute(Qt::WA_TranslucentBackground);
    m_view.resize(64, 1);
    makePage();
    // One that is not shown never paints.
    m_view.show();
    m_deadline.setSingleShot(true);
    m_deadline.setInterval(overlays::longestRender);
    QObject::connect(&m_deadline, &QTimer::timeout, &m_view, [this] { finish(overlays::Outcome::TimedOut); });
    m_look.setInterval(4ms);
    QObject::connect(&m_look, &QTimer::timeout, &m_view, [this] { lookForMarker(); });
}

FragmentRenderer::~FragmentRenderer() = default;

void FragmentRenderer::makePage()
{
    auto page = std::make_unique<InertPage>(m_profile);
    QObject::connect(page.get(), &QWebEnginePage::loadFinished, &m_view, [this](bool isGood) {
        // One that is not good may be where the page wanted to go; our own that fails meets the deadline.
        if (!isGood || !m_afterLoad)
            return;
        (this->*std::exchange(m_afterLoad, nullptr))();
    });
    QObject::connect(page.get(), &QWebEnginePage::renderProcessTerminated, &m_view, [this] { soon(&FragmentRenderer::giveUp); });
    m_view.setPage(page.get());
    // The one before may be the one that is just telling us something.
    if (m_page) {
        m_page->disconnect(&m_view);
        m_page.release()->deleteLater();
    }
    m_page = std::move(page);
    m_isFresh = true;
}

void FragmentRenderer::start(std::function<void()> done)
{
    m_started = std::move(done);
    load(&FragmentRenderer::started);
}

void FragmentRenderer::started()
{
    m_started();
}

void FragmentRenderer::render(const QString& fragment, double cssWidth, Done done)
{
    m_done = std::move(done);
    if (!overlays::isWithinLimits({ static_cast<std::uint64_t>(fragment.size()), cssWidth }))
        return soon(&FragmentRenderer::refuse);
    m_marker = markerColour(m_number);
    m_cssWidth = cssWidth;
    m_document = quoted(documentOf(fragment, cssWidth));
    m_width = static_cast<int>(std::ceil(cssWidth));
    m_height = 1;
    m_deadline.start();
    m_afterLayout = &FragmentRenderer::measure;
    if (m_isFresh)
        load(&FragmentRenderer::show);
    else
        show();
}

void FragmentRenderer::load(Step next)
{
    m_afterLoad = next;
    m_page->show(stage());
    m_isFresh = false;
}

void FragmentRenderer::show()
{
    awaitLayout(QStringLiteral("show(...%1,%2,%3)").arg(m_document, QString::number(m_width), QString::number(m_height)));
}

void FragmentRenderer::lookWhetherReady()
{
    awaitLayout(QStringLiteral("isReady()"));
}

void FragmentRenderer::awaitLayout(const QString& script)
{
    ask(script, [this](const QVariant& isReady) {
        if (isReady.toBool())
            (this->*m_afterLayout)();
        else
            soon(&FragmentRenderer::lookWhetherReady);
    });
}

void FragmentRenderer::measure()
{
    ask(QStringLiteral("heightOfContent()"), [this](const QVariant& height) {
        if (height.isValid())
            measured(height.toInt());
        else
            finish(overlays::Outcome::Failed);
    });
}

void FragmentRenderer::measured(int height)
{
    m_height = std::clamp(height, 1, overlays::heightLimit(m_cssWidth));
    m_view.resize(m_width, m_height + markerHeight);
    awaitSize();
}

void FragmentRenderer::awaitSize()
{
    ask(QStringLiteral("[innerWidth,innerHeight]"), [this](const QVariant& size) {
        if (size.toList() == QVariantList{ m_view.width(), m_view.height() })
            layOutAgain();
        else
            soon(&FragmentRenderer::awaitSize);
    });
}

void FragmentRenderer::layOutAgain()
{
    m_afterLayout = &FragmentRenderer::placeMarker;
    load(&FragmentRenderer::show);
}

void FragmentRenderer::placeMarker()
{
    m_page->run(QStringLiteral("mark('%1',%2)").arg(QColor(m_marker).name()).arg(markerHeight));
    m_look.start();
}

void FragmentRenderer::lookForMarker()
{
    if (!isMarked(m_view.grab(QRect(0, m_height, m_view.width(), markerHeight)).toImage()))
        return;
    auto image = m_view.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.size() != m_view.size() * overlays::scale || !isMarked(image))
        return;
    image.setDevicePixelRatio(1);
    finish(overlays::Outcome::Rendered, image.copy(0, 0, overlays::bitmapWidth(m_cssWidth), m_height * overlays::scale));
}

bool FragmentRenderer::isMarked(const QImage& strip) const
{
    return !strip.isNull() && strip.pixel(strip.width() / 2, strip.height() - 1) == m_marker;
}

void FragmentRenderer::refuse()
{
    finish(overlays::Outcome::Refused);
}

void FragmentRenderer::giveUp()
{
    finish(overlays::Outcome::EngineDied);
}

void FragmentRenderer::ask(const QString& script, const std::function<void(const QVariant&)>& then)
{
    m_page->run(script, [this, number = m_number, then](const QVariant& answer) {
        if (number == m_number)
            then(answer);
    });
}

void FragmentRenderer::soon(Step step)
{
    QTimer::singleShot(2, &m_view, [this, number = m_number, step] {
        if (number == m_number)
            (this->*step)();
    });
}

void FragmentRenderer::finish(overlays::Outcome outcome, QImage image)
{
    m_deadline.stop();
    m_look.stop();
    m_afterLoad = nullptr;
    ++m_number;
    if (outcome == overlays::Outcome::TimedOut)
        m_page->kill();
    if (outcome != overlays::Outcome::Rendered)
        makePage();
    if (const auto done = std::exchange(m_done, {}))
        done({ outcome, std::move(image) });
}

} // namespace vantry
