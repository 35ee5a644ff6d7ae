#include "project/DurableFile.h"

#include "base/Claim.h"
#include "base/Durability.h"
#include "project/FileDescriptor.h"
#include "project/Uuid.h"

#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace vantry {

namespace {

using std::filesystem::path;

constexpr mode_t permissionBits = 0777;
constexpr mode_t permissionsOfNewFiles = 0666;

/// Takes a file away that did not become what it was made for.
class Removal {
public:
    explicit Removal(path file)
        : m_file(std::move(file))
    {
    }

    ~Removal()
    {
        if (!m_file.empty())
            ::unlink(m_file.c_str());
    }

    Removal(const Removal&) = delete;
    Removal& operator=(const Removal&) = delete;

    void cancel() { m_file.clear(); }

private:
    path m_file;
};

path folderOf(const path& file)
{
    return file.has_parent_path() ? file.parent_path() : path(".");
}

std::string startOfTemporaries(const path& file)
{
    return '.' + file.filename().string() + '.';
}

/// A hidden name of its own for each writer: two of them never write into the same file.
path temporaryBeside(const path& file)
{
    return folderOf(file) / (startOfTemporaries(file) + Uuid::random().text());
}

/// False when it was taken for a leftover.
bool writeAndMove(const path& file, const path& temporary, std::string_view bytes)
{
    FileDescriptor target(temporary,
        { .flags = O_WRONLY | O_CREAT | O_EXCL, .permissions = permissionsOfNewFiles, .name = file.filename().string() });
    Removal removal(temporary);
    const auto claim = Claim::on(temporary);
    if (!claim)
        return false;
    struct stat old;
    if (::stat(file.c_str(), &old) == 0)
        target.setPermissions(old.st_mode & permissionBits);
    target.write(bytes);
    target.sync();
    target.close();
    if (::rename(temporary.c_str(), file.c_str()) != 0)
        target.failWithLastError();
    removal.cancel();
    return true;
}

} // namespace

std::string readFile(const path& file, std::size_t limit)
{
    // Opening does not wait, should the name be a pipe's.
    const FileDescriptor source(file, { .flags = O_RDONLY | O_NONBLOCK, .name = file.filename().string() });
    const auto status = source.status();
    if (!S_ISREG(status.st_mode))
        source.fail("not a file");
    if (static_cast<std::size_t>(status.st_size) > limit)
        source.fail("larger than " + std::to_string(limit >> 20) + " MB");
    return source.read(static_cast<std::size_t>(status.st_size));
}

void replaceFile(const path& file, std::string_view bytes)
{
    while (!writeAndMove(file, temporaryBeside(file), bytes)) { }
    makeNamesDurable(folderOf(file));
}

void removeLeftovers(const path& file)
{
    const auto start = startOfTemporaries(file);
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folderOf(file), error), end; !error && entry != end; entry.increment(error)) {
        const auto name = entry->path().filename().string();
        if (name.starts_with(start) && Uuid::parse(std::string_view(name).substr(start.size())))
            removeUnclaimed(entry->path());
    }
}

} // namespace vantry
