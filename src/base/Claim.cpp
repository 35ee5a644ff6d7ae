#include "base/Claim.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace vantry {

namespace {

/// Does not wait for a pipe, nor go where a link leads.
Descriptor openItself(const std::filesystem::path& path)
{
    return Descriptor(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

/// Whether it still has that name.
bool isAt(const std::filesystem::path& path, const Descriptor& file)
{
    struct stat open { };
    struct stat named { };
    return fstat(file.number(), &open) == 0 && lstat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev
        && open.st_ino == named.st_ino;
}

bool isOurs(const Descriptor& file)
{
    struct stat status { };
    return fstat(file.number(), &status) == 0 && status.st_uid == geteuid();
}

void waitForLock(const Descriptor& file)
{
    while (flock(file.number(), LOCK_EX) != 0 && errno == EINTR) { }
}

} // namespace

std::optional<Claim> Claim::on(const std::filesystem::path& path)
{
    Descriptor file = openItself(path);
    if (!file && errno == ENOENT)
        return std::nullopt;
    if (!file)
        return Claim({});
    waitForLock(file);
    return isAt(path, file) ? std::optional(Claim(std::move(file))) : std::nullopt;
}

void removeUnclaimed(const std::filesystem::path& path)
{
    const Descriptor file = openItself(path);
    if (!file || !isOurs(file) || flock(file.number(), LOCK_EX | LOCK_NB) != 0 || !isAt(path, file))
        return;
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

} // namespace vantry
