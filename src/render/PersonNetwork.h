#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace vantry {

/// The neural network that tells a person from what is behind them, on one core. It looks at the whole picture in a size of its
/// own. One thread at a time.
class PersonNetwork {
public:
    /// From a model file, which is checked. Throws AppError when it is broken, is no network of this kind, or this processor cannot
    /// run it.
    explicit PersonNetwork(std::span<const std::byte> file);
    ~PersonNetwork();

    /// Pixels of the picture it looks at, and of the mask.
    int width() const;
    int height() const;

    /// To be filled: red, green and blue from 0 to 1, pixel by pixel, row by row.
    std::span<float> input();

    /// Throws AppError when it cannot.
    void run();

    /// Of the last run: from 0, background, to 1, person.
    std::span<const float> mask() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
