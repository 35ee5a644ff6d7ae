#pragma once

#include <chrono>
#include <thread>

namespace vantry::test {

/// Asks again and again whether the condition holds, and says whether it did before the time was over. For what other programs do:
/// what wants an event loop of our own is awaited with `pumpUntil`.
template <typename Condition>
bool holdsSoon(Condition condition, std::chrono::milliseconds longest = std::chrono::seconds(60))
{
    const auto deadline = std::chrono::steady_clock::now() + longest;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

} // namespace vantry::test
