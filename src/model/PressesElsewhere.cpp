#include "model/PressesElsewhere.h"

#include "base/AppError.h"
#include "base/Log.h"
#include "model/ChangeTo.h"
#include "platform/ButtonPresses.h"

#include <QGuiApplication>

#include <algorithm>

namespace vantry {

using namespace Qt::StringLiterals;

PressesElsewhere::PressesElsewhere(QObject* parent)
    : QObject(parent)
{
}

PressesElsewhere::~PressesElsewhere() = default;

void PressesElsewhere::setWatched(bool watched)
{
    if (!changeTo(m_isWatched, watched))
        return;
    // Not at once: this may be what a press has led to.
    QMetaObject::invokeMethod(this, &PressesElsewhere::listen, Qt::QueuedConnection);
    Q_EMIT watchedChanged();
}

void PressesElsewhere::listen()
{
    if (!m_isWatched || m_presses || QGuiApplication::platformName() != "xcb"_L1) {
        if (!m_isWatched)
            m_presses.reset();
        return;
    }
    try {
        m_presses = std::make_unique<ButtonPresses>([this](std::uint32_t topLevel) { onPress(topLevel); });
    } catch (const AppError& error) {
        qCWarning(logModel, "%s", error.what());
    }
}

void PressesElsewhere::onPress(std::uint32_t topLevel)
{
    const auto isIt = [topLevel](const QWindow* window) { return window->handle() && window->winId() == topLevel; };
    if (m_isWatched && std::ranges::none_of(m_windows, isIt))
        Q_EMIT pressed();
}

} // namespace vantry
