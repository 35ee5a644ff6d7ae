#include "model/ScreenPreview.h"

#include "base/AppError.h"
#include "base/Background.h"
#include "base/Log.h"
#include "model/ChangeTo.h"
#include "model/Coroutines.h"
#include "platform/ScreenReader.h"
#include "platform/TopPanel.h"

#include <QCoroFuture>
#include <QPointer>

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace vantry {

namespace {

/// Everything that the display shows, at once.
QImage photograph(const Display& display)
{
    ScreenReader reader(display, { getpid() }, Cursor::LeftOut);
    const auto blocks = reader.read().blocks;
    QImage image(reader.width(), reader.height(), QImage::Format_RGB32);
    if (image.isNull() || blocks.empty())
        return {};
    for (const PixelBlock& block : blocks)
        for (int y = block.area.y; y < block.area.bottom(); ++y)
            std::memcpy(image.scanLine(y) + static_cast<std::ptrdiff_t>(block.area.x) * 4, block.at(block.area.x, y),
                static_cast<std::size_t>(block.area.width) * 4);
    return image;
}

QImage still(const Display& display)
{
    constexpr int width = 1280;
    const int height = std::max(2, display.height * width / display.width);
    const QImage image = photograph(display);
    return image.isNull() ? image : image.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QFuture<QImage> takeStill(Worker& worker, const Display& display)
{
    return inBackground(worker, [display] { return still(display); });
}

} // namespace

ScreenPreview::ScreenPreview()
    : m_menuBar(menuBarFraction(std::nullopt))
{
}

ScreenPreview::~ScreenPreview() = default;

QCoro::Task<> ScreenPreview::capture(std::optional<Display> display)
{
    const QPointer<ScreenPreview> self(this);
    const int number = ++m_newest;
    const bool isOther = changeTo(m_display, display);
    if (changeTo(m_menuBar, menuBarFraction(display)) || isOther)
        Q_EMIT displayChanged();
    if (!display)
        co_return;
    QImage image;
    try {
        const QFuture<QImage> taking = takeStill(m_worker, *display);
        image = co_await taking;
    } catch (const std::exception& error) {
        qCDebug(logModel) << "No picture of the screen:" << error.what();
    }
    if (!self || number != m_newest || image.isNull())
        co_return;
    m_image = std::move(image);
    Q_EMIT imageChanged();
}

double menuBarFraction(const std::optional<Display>& display)
{
    constexpr double guess = 0.03;
    if (!display || display->height <= 0)
        return guess;
    try {
        return static_cast<double>(topPanelHeight(*display)) / display->height;
    } catch (const AppError&) {
        return guess;
    }
}

} // namespace vantry
