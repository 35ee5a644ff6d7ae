#include "platform/AccessibilitySwitch.h"

#include "base/AppError.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

QDBusMessage askSwitch(const QString& method, const QVariantList& more = {})
{
    constexpr int longest = 1000; // milliseconds
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.freedesktop.DBus.Properties"_s, method);
    call << u"org.a11y.Status"_s << u"IsEnabled"_s;
    for (const QVariant& argument : more)
        call << argument;
    return QDBusConnection::sessionBus().call(call, QDBus::Block, longest);
}

QDBusMessage set(bool isOn)
{
    return askSwitch(u"Set"_s, { QVariant::fromValue(QDBusVariant(isOn)) });
}

} // namespace

AccessibilitySwitch::~AccessibilitySwitch()
{
    if (m_wasOff)
        set(false);
}

bool AccessibilitySwitch::isOn()
{
    const QVariantList answer = askSwitch(u"Get"_s).arguments();
    return !answer.isEmpty() && answer.first().value<QDBusVariant>().variant().toBool();
}

void AccessibilitySwitch::switchOn()
{
    if (isOn())
        return;
    if (const auto answer = set(true); answer.type() == QDBusMessage::ErrorMessage)
        throw AppError("This desktop cannot show what is in other windows: " + answer.errorMessage().toStdString());
    m_wasOff = true;
}

} // namespace vantry
