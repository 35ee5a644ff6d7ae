#pragma once

#include "base/Descriptor.h"

#include <filesystem>
#include <optional>
#include <utility>

namespace vantry {

/// Says to other programs that a temporary file or folder is in use, for as long as it lives. Whatever ends the program, the system
/// takes it back: what nobody claims was left behind.
class Claim {
public:
    /// Of what was made just now. Nothing when somebody found it before it was claimed, and has removed it: make another. Where the
    /// file system knows no locks nobody can claim anything, and nobody removes anything either.
    static std::optional<Claim> on(const std::filesystem::path& path);

private:
    explicit Claim(Descriptor lock)
        : m_lock(std::move(lock))
    {
    }

    Descriptor m_lock;
};

/// Removes a file, or a folder with all that is in it, that a program of this user left behind. One that is claimed stays, and so
/// does what cannot be removed.
void removeUnclaimed(const std::filesystem::path& path);

} // namespace vantry
