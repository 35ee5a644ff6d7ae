#pragma once

#include "base/Claim.h"

#include <filesystem>
#include <optional>

namespace vantry {

/// A file that is made beside the one it will become, in a hidden folder of its own, and takes that one's place only when it is
/// complete. Until then the destination stays what it was; without `moveIntoPlace` nothing is left. What a program leaves that is
/// killed is removed by the next one that writes there. One thread at a time.
class PendingFile {
public:
    /// Throws AppError when nothing can be written there.
    explicit PendingFile(std::filesystem::path destination);
    ~PendingFile();

    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    /// Where to write. It has the destination's name, so that errors name what the user knows.
    std::filesystem::path path() const { return m_folder / m_destination.filename(); }

    /// Once what was written is complete and on the disk. Throws AppError.
    void moveIntoPlace();

    /// Removes what killed programs left in a folder.
    static void removeLeftovers(const std::filesystem::path& folder);

private:
    const std::filesystem::path m_destination;
    std::filesystem::path m_folder;
    std::optional<Claim> m_claim; ///< On the folder.
};

} // namespace vantry
