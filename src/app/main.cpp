#include "app/ClipRescue.h"
#include "app/CommandLine.h"
#include "app/HeadlessRun.h"
#include "app/Launch.h"
#include "app/UnixSignals.h"
#include "app/Window.h"
#include "base/AppError.h"
#include "model/AppModel.h"
#include "model/QuitFlow.h"
#include "platform/FileBrowser.h"
#include "platform/NetworkRoute.h"

#include <QGuiApplication>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <malloc.h>

using namespace vantry;

namespace {

int runWithoutWindow(int& argc, char** argv, const CommandLine& line)
{
    const QCoreApplication application(argc, argv);
    // An export shows nothing of what is said, and wants the processor.
    AppModel model({ .transcribe = Transcribe::OnRequest });
    HeadlessRun run(model, line);
    const UnixSignals signals;
    QObject::connect(&signals, &UnixSignals::caught, &run, &HeadlessRun::interrupt);
    QTimer::singleShot(0, &run, &HeadlessRun::start);
    return QCoreApplication::exec();
}

/// The exit status, and why it is no success.
int farewell(const QuitFlow& quitting)
{
    if (quitting.problem().isEmpty())
        return EXIT_SUCCESS;
    std::fprintf(stderr, "vantry: %s\n", quitting.problem().toUtf8().constData());
    return EXIT_FAILURE;
}

int runWithWindow(int& argc, char** argv, const CommandLine& line)
{
    Window::requireDesktop();
    const QGuiApplication application(argc, argv);
    AppModel model({ .reveal = revealInFileBrowser });
    const Window window(model);
    Launch launch(model, line);
    const ClipRescue rescue(model);
    const UnixSignals signals;
    QObject::connect(&signals, &UnixSignals::caught, &model, &AppModel::quit);
    // Not quit(), which would ask the window again.
    QObject::connect(
        &model, &AppModel::readyToQuit, &application, [&model] { QCoreApplication::exit(farewell(*model.quitting())); },
        Qt::QueuedConnection);
    QTimer::singleShot(0, &launch, &Launch::start);
    return QGuiApplication::exec();
}

/// Without waiting for a network that is silent: nothing of ours depends on it any more.
int ended(int status)
{
    if (isFindingRoutes()) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}

int run(int& argc, char** argv)
{
    const CommandLine line = parseCommandLine({ argv + 1, argv + argc });
    if (line.help) {
        std::fputs(commandLineHelp().c_str(), stdout);
        return EXIT_SUCCESS;
    }
    if (line.version) {
        std::puts("Vantry " VANTRY_VERSION);
        return EXIT_SUCCESS;
    }
    if (line.selftest)
        throw AppError("This version has no self test");
    return line.exportFile ? runWithoutWindow(argc, argv, line) : runWithWindow(argc, argv, line);
}

} // namespace

int main(int argc, char** argv)
{
    // What is as large as a picture goes back to the system when it is freed. By itself the heap learns to keep it, each thread in
    // a part of its own, and grows with every recording.
    constexpr int large = 256 * 1024;
    mallopt(M_MMAP_THRESHOLD, large);
    try {
        return ended(run(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vantry: %s\n", error.what());
        return ended(EXIT_FAILURE);
    }
}
