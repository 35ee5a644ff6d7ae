#include "capture/ClipFolder.h"

#include "base/AppError.h"
#include "capture/DiskRoom.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace vantry {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuse(const fs::path& folder, int error)
{
    throw AppError("Nothing can be written into " + folder.string() + ": " + std::generic_category().message(error));
}

/// The folder itself, else the innermost one around it that is there.
fs::path innermostThere(fs::path folder)
{
    while (::access(folder.c_str(), F_OK) != 0 && folder.has_relative_path())
        folder = folder.parent_path();
    return folder;
}

} // namespace

fs::path checkRecordingsFolder(const fs::path& folder)
{
    const fs::path there = innermostThere(folder);
    if (::access((there / ".").c_str(), W_OK | X_OK) != 0) // The dot: a file is no folder.
        refuse(there, errno);
    DiskRoom(there).checkForClip();
    return there;
}

void checkClipFolder(const fs::path& folder)
{
    if (checkRecordingsFolder(folder) != folder)
        refuse(folder, ENOENT);
}

} // namespace vantry
