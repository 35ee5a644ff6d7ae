#pragma once

#include <QFuture>
#include <QList>
#include <QNetworkProxy>

#include <chrono>

class QNetworkAccessManager;
class QObject;
class QUrl;

namespace vantry {

/// The way to a server: the proxies that may lead there, the best first.
using NetworkRoute = QList<QNetworkProxy>;

/// Asks the desktop for the proxy to a server, and finds the address of whom to speak to first. Both questions block, cannot be
/// called off, and take minutes where a proxy script or a name server is silent: the network would ask them at the caller's cost.
/// Here a thread asks that nobody waits for.
///
/// The future throws an AppError when there is no such address, when `patience` is over, and when `context` goes. To be called on
/// the thread of `context`, which needs an event loop.
QFuture<NetworkRoute> findRoute(const QUrl& server, std::chrono::milliseconds patience, QObject& context);

/// From now on requests take that way, without asking again.
void setRoute(QNetworkAccessManager& network, const NetworkRoute& route);

/// Whether somebody is still asking. Then the process must not end in the usual way, which waits for it. Any thread.
bool isFindingRoutes();

} // namespace vantry
