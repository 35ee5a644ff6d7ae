#include "transcribe/PartialFile.h"

#include "base/AppError.h"
#include "base/Durability.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace vantry {

namespace fs = std::filesystem;

PartialFile::PartialFile(fs::path destination)
    : m_destination(std::move(destination))
    , m_path(m_destination.string() + ".part")
{
    std::error_code ignored; // Opening tells.
    fs::create_directories(m_path.parent_path(), ignored);
    m_file = Descriptor(open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!m_file)
        fail();
    if (flock(m_file.number(), LOCK_EX | LOCK_NB) != 0)
        throw AppError("Another Vantry is downloading " + m_destination.filename().string());
    readAll();
}

void PartialFile::fail() const
{
    throw AppError("Could not write " + m_destination.filename().string() + ": " + std::generic_category().message(errno));
}

/// Whatever is there; what is appended follows it.
void PartialFile::readAll()
{
    if (lseek(m_file.number(), 0, SEEK_SET) != 0)
        fail();
    m_hash.reset();
    m_size = 0;
    QByteArray piece(1 << 20, Qt::Uninitialized);
    for (;;) {
        const auto count = ::read(m_file.number(), piece.data(), static_cast<std::size_t>(piece.size()));
        if (count < 0 && errno != EINTR)
            fail();
        if (count == 0)
            return;
        if (count > 0) {
            m_hash.addData(QByteArrayView(piece.constData(), count));
            m_size += count;
        }
    }
}

void PartialFile::append(const QByteArray& bytes)
{
    for (qsizetype written = 0; written < bytes.size();) {
        const auto count = ::write(m_file.number(), bytes.constData() + written, static_cast<std::size_t>(bytes.size() - written));
        if (count < 0 && errno != EINTR)
            fail();
        written += std::max<ssize_t>(count, 0);
    }
    m_hash.addData(bytes);
    m_size += bytes.size();
}

void PartialFile::truncate(std::int64_t size)
{
    if (size == m_size)
        return;
    if (ftruncate(m_file.number(), size) != 0)
        fail();
    readAll();
}

std::string PartialFile::sha256() const
{
    return m_hash.result().toHex().toStdString();
}

void PartialFile::moveIntoPlace()
{
    makeDurable(m_path);
    std::error_code error;
    fs::rename(m_path, m_destination, error);
    if (error)
        throw AppError("Could not write " + m_destination.filename().string() + ": " + error.message());
    makeNamesDurable(m_destination.parent_path());
}

} // namespace vantry
