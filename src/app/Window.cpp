#include "app/Window.h"

#include "base/AppError.h"
#include "platform/WindowHints.h"
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

bool Window::hasDesktop()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
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
