#include "base/Worker.h"
#include "base/AppError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

/// Whether a thread waits for something.
bool sleeps(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string stat;
    std::getline(file, stat);
    return stat.find(") S ") != std::string::npos;
}

} // namespace

TEST(Worker, runsJobsInOrderHandsResultsAndErrorsBackAndFinishesBeforeItGoes)
{
    std::vector<int> seen;
    {
        Worker worker("order");
        EXPECT_THROW(worker.sync([]() -> int { throw AppError("no"); }), AppError);
        EXPECT_EQ(worker.sync([] { return 42; }), 42);
        for (int i = 0; i < 1000; ++i)
            worker.post([&seen, i] { seen.push_back(i); });
    }
    ASSERT_EQ(seen.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TEST(Worker, aFullDroppingWorkerRefusesAndGoesOnLater)
{
    Worker worker("full", { .capacity = 1, .whenFull = WhenFull::Drop });
    std::promise<void> started, release;
    ASSERT_TRUE(worker.tryPost([&] {
        started.set_value();
        release.get_future().wait();
    }));
    started.get_future().wait();
    EXPECT_TRUE(worker.tryPost([] {}));
    EXPECT_FALSE(worker.tryPost([] {}));
    release.set_value();
    while (!worker.tryPost([] {}))
        std::this_thread::yield();
}

TEST(BoundedQueue, closeEndsEveryWaitAndGivesWhatIsLeft)
{
    BoundedQueue<int> queue(1);
    ASSERT_TRUE(queue.push(1));
    std::promise<pid_t> id;
    std::atomic<bool> refused = false;
    std::thread pusher([&] {
        id.set_value(gettid());
        refused = !queue.push(2);
    });
    const pid_t thread = id.get_future().get();
    while (!sleeps(thread))
        std::this_thread::yield();
    queue.close();
    pusher.join();
    EXPECT_TRUE(refused);
    EXPECT_EQ(queue.pop(), 1);
    EXPECT_EQ(queue.pop(), std::nullopt);
}

} // namespace vantry
