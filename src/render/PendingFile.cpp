#include "render/PendingFile.h"

#include "base/AppError.h"
#include "base/Durability.h"

#include <cstdlib>
#include <system_error>

namespace vantry {

namespace {

[[noreturn]] void fail(const std::filesystem::path& destination, const std::error_code& error)
{
    throw AppError("Could not write " + destination.filename().string() + ": " + error.message());
}

std::filesystem::path makeFolderBeside(const std::filesystem::path& destination)
{
    auto name = (destination.parent_path() / ".vantry-export-XXXXXX").string();
    if (!mkdtemp(name.data()))
        fail(destination, { errno, std::generic_category() });
    return name;
}

} // namespace

PendingFile::PendingFile(std::filesystem::path destination)
    : m_destination(std::move(destination))
{
    if (std::filesystem::is_directory(m_destination))
        fail(m_destination, std::make_error_code(std::errc::is_a_directory));
    m_folder = makeFolderBeside(m_destination);
}

PendingFile::~PendingFile()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void PendingFile::moveIntoPlace()
{
    std::error_code error;
    std::filesystem::rename(path(), m_destination, error);
    if (error)
        fail(m_destination, error);
    makeDurable(m_destination);
}

} // namespace vantry
