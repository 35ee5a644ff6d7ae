#include "platform/PipeWireLoop.h"

#include "support/MediaServer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>

namespace vantry {

namespace {

using test::pumpUntil;

std::multiset<std::string> threadNames()
{
    std::multiset<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "comm");
        std::string name;
        std::getline(file, name);
        names.insert(name);
    }
    return names;
}

class PipeWireLoopTest : public test::EventLoopTest { };

} // namespace

TEST_F(PipeWireLoopTest, answersOnAThreadOfItsOwnAndLeavesNoneBehind)
{
    std::make_unique<PipeWireLoop>("test.media").reset(); // A process that has its first thread may get helpers that stay.
    const auto before = threadNames();
    for (int i = 0; i < 3; ++i) {
        PipeWireLoop loop("test.media");
        EXPECT_TRUE(loop.awaitServer());
        EXPECT_THAT(threadNames(), testing::Contains("test.media"));
    }
    // A thread that was joined is gone from the list a moment later.
    pumpUntil([&] { return threadNames() == before; });
    EXPECT_EQ(threadNames(), before);
}

TEST_F(PipeWireLoopTest, saysThatThereIsNoServer)
{
    test::MediaServer server;
    server.kill();
    try {
        PipeWireLoop loop("test.media");
        FAIL() << "connected to nobody";
    } catch (const AppError& error) {
        EXPECT_THAT(error.what(), testing::StartsWith("There is no PipeWire server to connect to: "));
    }
}

TEST_F(PipeWireLoopTest, reportsALostConnectionOnce)
{
    test::MediaServer server;
    std::atomic<int> reports = 0;
    PipeWireLoop loop("test.media", [&](const AppError&) { ++reports; });
    ASSERT_TRUE(loop.awaitServer());
    server.kill();
    EXPECT_TRUE(pumpUntil([&] { return reports > 0; }));
    EXPECT_FALSE(loop.awaitServer());
    EXPECT_EQ(reports, 1);
}

} // namespace vantry
