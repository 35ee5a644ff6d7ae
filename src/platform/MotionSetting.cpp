#include "platform/MotionSetting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <algorithm>
#include <optional>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

constexpr auto service = "org.freedesktop.portal.Desktop"_L1;
constexpr auto path = "/org/freedesktop/portal/desktop"_L1;
constexpr auto interface = "org.freedesktop.portal.Settings"_L1;

constexpr auto sharedGroup = "org.freedesktop.appearance"_L1;
constexpr auto sharedKey = "reduced-motion"_L1;
constexpr auto gnomeGroup = "org.gnome.desktop.interface"_L1;
constexpr auto gnomeKey = "enable-animations"_L1;
constexpr auto kdeGroup = "org.kde.kdeglobals.KDE"_L1;
constexpr auto kdeKey = "AnimationDurationFactor"_L1;

/// Values come wrapped once by newer portals and twice by older ones.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

/// Nothing for other settings, and for values that say nothing.
std::optional<bool> asksForLess(const QString& group, const QString& key, const QVariant& value)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (group == sharedGroup && key == sharedKey && isNumber)
        return number == 1;
    if (group == gnomeGroup && key == gnomeKey && value.metaType() == QMetaType::fromType<bool>())
        return !value.toBool();
    if (group == kdeGroup && key == kdeKey && isNumber)
        return number == 0;
    return std::nullopt;
}

} // namespace

MotionSetting::MotionSetting()
{
    QDBusConnection::sessionBus().connect(service, path, interface, u"SettingChanged"_s, this, SLOT(ask()));
    ask();
}

bool MotionSetting::isReduced() const
{
    return std::ranges::any_of(m_reduced, [](const auto& setting) { return setting.second; });
}

void MotionSetting::ask()
{
    ask(sharedGroup, sharedKey);
    ask(gnomeGroup, gnomeKey);
    ask(kdeGroup, kdeKey);
}

void MotionSetting::ask(const QString& group, const QString& key)
{
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
    question << group << key;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        watcher->deleteLater();
        if (!reply.isValid())
            return;
        if (const auto isReduced = asksForLess(group, key, unwrapped(reply.value().variant())))
            take(key, *isReduced);
    });
}

void MotionSetting::take(const QString& key, bool isReduced)
{
    const bool before = this->isReduced();
    m_reduced[key] = isReduced;
    if (this->isReduced() != before)
        Q_EMIT changed();
}

} // namespace vantry
