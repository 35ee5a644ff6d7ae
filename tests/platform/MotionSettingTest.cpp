#include "platform/MotionSetting.h"

#include "support/PumpUntil.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <gtest/gtest.h>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// A settings portal with one setting.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Portal(bool animates)
        : m_animates(animates)
    {
        m_bus.registerObject(u"/org/freedesktop/portal/desktop"_s, this, QDBusConnection::ExportScriptableInvokables);
        m_bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }
    ~Portal() override { m_bus.unregisterService(u"org.freedesktop.portal.Desktop"_s); }

    Q_SCRIPTABLE Q_INVOKABLE QDBusVariant Read(const QString&, const QString& key)
    {
        // As older portals do: wrapped twice.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(key == u"enable-animations"_s ? QVariant(m_animates) : QVariant(2u))));
    }

    void change(bool animates)
    {
        m_animates = animates;
        QDBusMessage signal = QDBusMessage::createSignal(
            u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << u"org.gnome.desktop.interface"_s << u"enable-animations"_s << QVariant::fromValue(QDBusVariant(animates));
        m_bus.send(signal);
    }

private:
    QDBusConnection m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
    bool m_animates;
};

} // namespace

TEST(MotionSetting, followsWhatTheDesktopAsksFor)
{
    int count = 1;
    char name[] = "test";
    char* arguments[]{ name, nullptr };
    const QCoreApplication application(count, arguments);
    Portal portal(false);
    const MotionSetting setting;
    EXPECT_FALSE(setting.isReduced());
    EXPECT_TRUE(test::pumpUntil([&] { return setting.isReduced(); }));
    portal.change(true);
    EXPECT_TRUE(test::pumpUntil([&] { return !setting.isReduced(); }));
}

} // namespace vantry

#include "MotionSettingTest.moc"
