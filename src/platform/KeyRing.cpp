#include "platform/KeyRing.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

void askWhetherKeyRingIsLocked(QObject* context, std::function<void(bool isLocked)> answer)
{
    QDBusMessage question = QDBusMessage::createMethodCall(u"org.freedesktop.secrets"_s,
        u"/org/freedesktop/secrets/aliases/default"_s, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << u"org.freedesktop.Secret.Collection"_s << u"Locked"_s;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, answer = std::move(answer)] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        watcher->deleteLater();
        if (reply.isValid())
            answer(reply.value().variant().toBool());
    });
}

} // namespace vantry
