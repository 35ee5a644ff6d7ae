#include "capture/SoundHandOver.h"

#include <gtest/gtest.h>

#include <future>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;

SoundSample sampleAt(int cycle)
{
    return { .sound = { .channels = 1, .samples = std::vector<float>(256) }, .time = HostTime(cycle * 5ms) };
}

} // namespace

TEST(SoundHandOverTest, aQueueThatIsHeldUpLosesSoundAndHoldsNobodyUp)
{
    constexpr int handed = 10'000; // More than fit into the queue.
    std::vector<HostTime> seen;
    Worker queue("vantry.capture");
    SoundHandOver handOver(queue, [&](const SoundSample& sample) { seen.push_back(sample.time); });
    std::promise<void> goOn;
    queue.post([held = goOn.get_future().share()] { held.wait(); });
    const auto device = std::async(std::launch::async, [&] {
        for (int i = 0; i < handed; ++i)
            handOver.take(sampleAt(i));
    });
    EXPECT_EQ(device.wait_for(30s), std::future_status::ready);
    goOn.set_value();
    device.wait();
    queue.sync([] {});
    ASSERT_GE(seen.size(), 100u);
    EXPECT_LT(seen.size(), 1000u);
    for (std::size_t i = 0; i < seen.size(); ++i)
        EXPECT_EQ(seen[i], sampleAt(static_cast<int>(i)).time);

    handOver.take(sampleAt(handed));
    queue.sync([] {});
    EXPECT_EQ(seen.back(), sampleAt(handed).time) << "what comes afterwards is taken again";
}

} // namespace vantry
