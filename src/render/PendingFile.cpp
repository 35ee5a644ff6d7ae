#include "render/PendingFile.h"

#include "base/AppError.h"
#include "base/Durability.h"

#include <cstdlib>
#include <string_view>
#include <system_error>

namespace vantry {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = ".vantry-export-";
constexpr std::string_view varying = "XXXXXX";

[[noreturn]] void fail(const fs::path& destination, const std::error_code& error)
{
    throw AppError("Could not write " + destination.filename().string() + ": " + error.message());
}

bool isOfExport(const fs::path& path)
{
    const auto name = path.filename().string();
    return name.starts_with(prefix) && name.size() == prefix.size() + varying.size();
}

fs::path makeFolderBeside(const fs::path& destination)
{
    auto name = (destination.parent_path() / std::string(prefix).append(varying)).string();
    if (!mkdtemp(name.data()))
        fail(destination, { errno, std::generic_category() });
    return name;
}

} // namespace

PendingFile::PendingFile(fs::path destination)
    : m_destination(std::move(destination))
{
    if (fs::is_directory(m_destination))
        fail(m_destination, std::make_error_code(std::errc::is_a_directory));
    removeLeftovers(m_destination.parent_path());
    while (!m_claim) {
        m_folder = makeFolderBeside(m_destination);
        m_claim = Claim::on(m_folder);
    }
}

PendingFile::~PendingFile()
{
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

void PendingFile::removeLeftovers(const fs::path& folder)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (isOfExport(entry->path()))
            removeUnclaimed(entry->path());
}

void PendingFile::moveIntoPlace()
{
    std::error_code error;
    fs::rename(path(), m_destination, error);
    if (error)
        fail(m_destination, error);
    makeDurable(m_destination);
}

} // namespace vantry
