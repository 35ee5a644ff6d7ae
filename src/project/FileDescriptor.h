#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <sys/stat.h>

namespace vantry {

/// An open file or folder. Every error is an AppError of a name and the system's words. Calls that a signal interrupts are made
/// again.
class FileDescriptor {
public:
    struct Options {
        int flags = 0; ///< As `open` takes them.
        mode_t permissions = 0; ///< Of a file that is made, before the user's mask.
        std::string name; ///< What errors speak of.
    };

    FileDescriptor(const std::filesystem::path&, Options);
    ~FileDescriptor();

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[noreturn]] void fail(const std::string& text) const;
    [[noreturn]] void failWithLastError() const;

    struct stat status() const;

    /// Up to `size` bytes from where the last read ended; fewer only at the end of the file.
    std::string read(std::size_t size) const;
    void write(std::string_view bytes) const;
    void setPermissions(mode_t) const;

    /// Returns once everything that was written would outlast a power failure.
    void sync() const;

    /// Some network file systems say only here that a write failed.
    void close();

private:
    template <typename Call>
    ssize_t checked(Call) const;

    const std::string m_name;
    int m_descriptor = -1;
};

} // namespace vantry
