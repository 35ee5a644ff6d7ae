#include "platform/SoundRing.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

namespace vantry {

TEST(SoundRing, everySampleIsReadOnceAndInOrderUnlessItWasDiscarded)
{
    constexpr std::int64_t last = 1'000'000;
    SoundRing ring(1000, 2);
    const std::jthread writer([&] {
        std::mt19937 random(1);
        std::vector<float> samples;
        while (ring.written() < last) {
            const auto size = static_cast<std::int64_t>(random() % 700);
            samples.clear();
            for (auto i = ring.written(); i < ring.written() + size; ++i)
                for (const float channel : { 0.25f, 0.5f })
                    samples.push_back(static_cast<float>(i) + channel);
            const auto taken = ring.write(samples);
            ASSERT_LE(taken, size);
            if (random() % 16 == 0)
                ring.discard();
            if (taken == 0)
                std::this_thread::yield();
        }
    });
    std::mt19937 random(2);
    std::vector<float> samples(1200);
    std::int64_t next = 0;
    while (next < last) {
        const auto size = random() % 600;
        const auto piece = ring.read(std::span(samples).first(size * 2));
        ASSERT_LE(piece.length, static_cast<std::int64_t>(size));
        ASSERT_GE(piece.first, next) << "nothing comes twice";
        for (std::int64_t i = 0; i < piece.length; ++i) {
            ASSERT_EQ(samples[static_cast<std::size_t>(2 * i)], static_cast<float>(piece.first + i) + 0.25f);
            ASSERT_EQ(samples[static_cast<std::size_t>(2 * i + 1)], static_cast<float>(piece.first + i) + 0.5f);
        }
        if (piece.length == 0)
            std::this_thread::yield();
        next = piece.first + piece.length;
    }
}

} // namespace vantry
