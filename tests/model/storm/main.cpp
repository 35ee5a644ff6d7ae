// commandstorm SEED COMMANDS
//
// Gives the model random commands with real parts, on a screen of its own, and looks after each whether what is on the disk and in
// the model still fits together. The commands follow from the seed. Some end the program, in order or not; another process goes on
// then. Exit status 0 when nothing was found; else what was found is on the standard error.

#include "model/CaptureDevices.h"
#include "model/Coroutines.h"
#include "model/PreviewFlow.h"
#include "model/QuitFlow.h"
#include "model/storm/Commands.h"
#include "model/storm/Leftovers.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"
#include "support/XServer.h"

#include <QCoreApplication>
#include <QThreadPool>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>

using namespace vantry;
namespace fs = std::filesystem;

namespace {

constexpr int goesOn = 10; ///< Exit status: the program was ended in order, before the last command.

AppModel::Options optionsFor(const fs::path& home)
{
    return { .root = home / "Videos/Vantry",
        .settingsFile = home / "settings.ini",
        .speech = { .models = home / "models", .source = "http://127.0.0.1:1/" } };
}

int nextCommand(const fs::path& home)
{
    int next = 0;
    std::ifstream(home / "next") >> next;
    return next;
}

/// Runs commands until the last one, or until one of them is to quit.
int runCommands(const fs::path& home, unsigned seed, int last)
{
    AppModel model(optionsFor(home));
    model.devices()->startMeter();
    QCoro::waitFor(model.devices()->listDevices());
    model.devices()->startCamera();
    model.devices()->listDisplays();
    model.salvage();
    bool isReadyToQuit = false;
    QObject::connect(&model, &AppModel::readyToQuit, &model, [&] { isReadyToQuit = true; });
    storm::Commands commands(model, seed);
    for (int number = nextCommand(home); number < last && !isReadyToQuit; ++number) {
        std::ofstream(home / "next") << number + 1;
        commands.run(number);
        storm::check(model);
    }
    const bool isEarly = isReadyToQuit;
    if (!isReadyToQuit)
        model.quit();
    if (!test::pumpUntil([&] { return isReadyToQuit; }))
        throw std::runtime_error("it does not quit: " + model.quitting()->problem().toStdString());
    storm::check(model);
    return isEarly ? goesOn : EXIT_SUCCESS;
}

int runInThisProcess(int count, char** arguments)
{
    QCoreApplication application(count, arguments);
    QThreadPool::globalInstance()->setExpiryTimeout(100);
    const fs::path home = arguments[3];
    {
        // What libraries keep for the rest of a process is no leftover.
        AppModel model(optionsFor(home / "warm"));
        QCoro::waitFor(model.devices()->listDevices());
    }
    const storm::Leftovers before;
    const int status = runCommands(home, static_cast<unsigned>(std::atoi(arguments[1])), std::atoi(arguments[2]));
    storm::Leftovers after;
    test::pumpUntil([&] { return (after = storm::Leftovers()).isWithin(before); }, std::chrono::seconds(20));
    if (!after.isWithin(before))
        throw std::runtime_error("left over: " + after.beyond(before));
    return status;
}

/// One process after the other, each of which goes on where the one before it ended.
int drive(const std::string& self, const std::string& seed, const std::string& count)
{
    const test::TemporaryFolder home;
    const test::XServer screen(640, 360);
    for (;;) {
        // The shell tells how it ended, and lets it speak.
        const std::string command = self + " " + seed + " " + count + " " + home.path().string();
        const int status = WEXITSTATUS(std::system(command.c_str()));
        storm::checkFolders(home / "Videos/Vantry");
        if (status == EXIT_SUCCESS)
            return EXIT_SUCCESS;
        if (status != goesOn && status != 128 + SIGKILL)
            throw std::runtime_error("seed " + seed + ", before command " + std::to_string(nextCommand(home.path()))
                + ": ended with " + std::to_string(status));
    }
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 3 && count != 4)
        return 2;
    try {
        return count == 4 ? runInThisProcess(count, arguments) : drive(arguments[0], arguments[1], arguments[2]);
    } catch (const std::exception& error) {
        std::cerr << "commandstorm: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
