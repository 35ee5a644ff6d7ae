#include "app/Window.h"

#include "base/AppError.h"
#include "platform/WindowHints.h"
#include "platform/Xcb.h"
#include "ui/FloatingPanel.h"

#include <QFont>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(VantryPlugin)

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// A shadow is no part of a window, so it would be recorded.
void leavePanelsWithoutShadow()
{
    if (QGuiApplication::platformName() != "xcb"_L1)
        return;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (qobject_cast<FloatingPanel*>(window))
            leaveWithoutShadow(static_cast<std::uint32_t>(window->winId()));
    }
}

} // namespace

void Window::requireDesktop()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    const bool wayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (platform.isEmpty() && !wayland && qEnvironmentVariableIsEmpty("DISPLAY"))
        throw AppError("There is no desktop to show a window on. To export a recording without one, use --open DIR --export FILE");
    // An X server may be named and not be there.
    if (platform.startsWith("xcb") || (platform.isEmpty() && !wayland)) {
        const xcb::Connection server;
    }
}

Window::Window(AppModel& model)
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setFont(QFont(u"Inter"_s));
    QQuickStyle::setStyle(u"Basic"_s);
    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_engine->setInitialProperties({ { u"model"_s, QVariant::fromValue(&model) } });
    m_engine->load(u"qrc:/qt/qml/Vantry/Main.qml"_s);
    m_engine->load(u"qrc:/qt/qml/Vantry/Panels.qml"_s);
    if (m_engine->rootObjects().size() != 2)
        throw AppError("The window could not be loaded");
    leavePanelsWithoutShadow();
}

Window::~Window() = default;

} // namespace vantry
