#include "project/FileDescriptor.h"

#include "base/AppError.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace vantry {

template <typename Call>
ssize_t FileDescriptor::checked(Call call) const
{
    for (;;) {
        const ssize_t result = call();
        if (result >= 0)
            return result;
        if (errno != EINTR)
            failWithLastError();
    }
}

FileDescriptor::FileDescriptor(const std::filesystem::path& path, Options options)
    : m_name(std::move(options.name))
    , m_descriptor(static_cast<int>(checked([&] { return ::open(path.c_str(), options.flags | O_CLOEXEC, options.permissions); })))
{
}

FileDescriptor::~FileDescriptor()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void FileDescriptor::fail(const std::string& text) const
{
    throw AppError(m_name + ": " + text);
}

void FileDescriptor::failWithLastError() const
{
    fail(std::generic_category().message(errno));
}

struct stat FileDescriptor::status() const
{
    struct stat status;
    checked([&] { return ::fstat(m_descriptor, &status); });
    return status;
}

std::string FileDescriptor::read(std::size_t size) const
{
    std::string bytes(size, '\0');
    std::size_t filled = 0;
    while (filled < size) {
        const auto count = checked([&] { return ::read(m_descriptor, bytes.data() + filled, size - filled); });
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

void FileDescriptor::write(std::string_view bytes) const
{
    while (!bytes.empty())
        bytes.remove_prefix(static_cast<std::size_t>(checked([&] { return ::write(m_descriptor, bytes.data(), bytes.size()); })));
}

void FileDescriptor::setPermissions(mode_t permissions) const
{
    checked([&] { return ::fchmod(m_descriptor, permissions); });
}

void FileDescriptor::sync() const
{
    checked([&] { return ::fsync(m_descriptor); });
}

void FileDescriptor::close()
{
    if (::close(std::exchange(m_descriptor, -1)) != 0 && errno != EINTR)
        failWithLastError();
}

} // namespace vantry
