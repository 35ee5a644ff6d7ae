#include "base/Durability.h"

#include "base/AppError.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace vantry {

namespace {

int syncAndClose(int descriptor)
{
    if (descriptor < 0)
        return errno;
    const int error = fsync(descriptor) == 0 ? 0 : errno;
    close(descriptor);
    return error;
}

} // namespace

void makeDurable(const std::filesystem::path& file)
{
    if (const int error = syncAndClose(open(file.c_str(), O_WRONLY | O_CLOEXEC)))
        throw AppError("Could not write " + file.filename().string() + ": " + std::generic_category().message(error));
    makeNamesDurable(file.has_parent_path() ? file.parent_path() : std::filesystem::path("."));
}

void makeNamesDurable(const std::filesystem::path& folder)
{
    syncAndClose(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

} // namespace vantry
