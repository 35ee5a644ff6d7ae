#include "app/ClipRescue.h"

#include "model/AppModel.h"
#include "model/RecordingFlow.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr auto longestWait = 3s;

std::atomic<AppModel*> endangered = nullptr;
std::atomic<bool> isRescued = false;
std::once_flag once;
std::thread::id mainThread;

/// Several threads may find the X server gone and end the process, each at its own time. The model belongs to the main thread: the
/// others give it the time to come, unless it waits for one of them.
void rescue()
{
    const auto deadline = std::chrono::steady_clock::now() + longestWait;
    while (std::this_thread::get_id() != mainThread && !isRescued && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(10ms);
    std::call_once(once, [] {
        if (AppModel* model = endangered)
            model->recording().rescueClip();
        isRescued = true;
    });
}

} // namespace

ClipRescue::ClipRescue(AppModel& model)
{
    endangered = &model;
    mainThread = std::this_thread::get_id();
    // Each is called once, by the thread that comes to it first: there is one for the main thread and some for others.
    for (int i = 0; i < 4; ++i)
        std::atexit(rescue);
}

ClipRescue::~ClipRescue()
{
    endangered = nullptr;
}

} // namespace vantry
