#include "app/Window.h"

#include "base/AppError.h"

#include <QFont>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(VantryPlugin)

namespace vantry {

using namespace Qt::StringLiterals;

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
    if (m_engine->rootObjects().isEmpty())
        throw AppError("The window could not be loaded");
}

Window::~Window() = default;

} // namespace vantry
