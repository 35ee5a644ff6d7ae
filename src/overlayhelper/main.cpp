#include "overlayhelper/Confinement.h"
#include "overlayhelper/Environment.h"
#include "overlayhelper/RequestServer.h"

#include <QApplication>

using namespace vantry;

/// Makes bitmaps of HTML fragments for the application, which talks to it over its standard input. A program of its own, so that
/// nothing that a fragment does reaches the application. It ends when the application does, or closes the socket.
int main(int argc, char** argv)
{
    const int socket = keepSocketForOurselves();
    endWithParent();
    leaveNetwork();
    // Clears what the system remembers to do when the parent ends, so once more.
    endWithParent();
    setUpEnvironment();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const RequestServer server(socket);
    return QApplication::exec();
}
