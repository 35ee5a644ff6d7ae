#include "ai/Keychain.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// keychainprobe SERVICE COMMAND...
//
// Works with the key ring of its environment and prints what comes of it, a line for each read. The commands: "read", "write",
// which stores $KEY, "stop", which reads and gives that up after 2.5 s, and lines for the shell.

using namespace vantry;
using namespace std::chrono_literals;

namespace {

/// How often the event loop came round meanwhile.
template <typename Result>
int waitFor(const QFuture<Result>& future)
{
    int rounds = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++rounds; });
    timer.start(10ms);
    while (!future.isFinished())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return rounds;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    Keychain keychain({ .service = QString::fromUtf8(argv[1]) });
    for (int i = 2; i < argc; ++i) {
        const std::string_view command = argv[i];
        if (command == "read" || command == "stop") {
            const auto reading = keychain.openRouterKey();
            if (command == "stop")
                QTimer::singleShot(2500ms, &application, [&keychain] { keychain.stopReading(); });
            const int rounds = waitFor(reading);
            std::printf("%s after %d rounds\n", qPrintable(reading.result().value_or(QStringLiteral("no key"))), rounds);
        } else if (command == "write") {
            waitFor(keychain.setOpenRouterKey(qEnvironmentVariable("KEY")));
        } else if (std::system(argv[i]) != 0) {
            return EXIT_FAILURE;
        }
    }
}
