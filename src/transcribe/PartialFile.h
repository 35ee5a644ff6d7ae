#pragma once

#include "base/Descriptor.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <cstdint>
#include <filesystem>

namespace vantry {

/// A file on its way into a folder: it carries the ending ".part" until all of it is there, and goes on where an earlier attempt
/// ended. One process at a time. Errors are AppErrors.
class PartialFile {
public:
    /// Opens what an earlier attempt left, or begins.
    explicit PartialFile(std::filesystem::path destination);

    /// Bytes that are there.
    std::int64_t size() const { return m_size; }

    void append(const QByteArray& bytes);
    void truncate(std::int64_t size);

    /// Of all that is there, in lower-case hexadecimal digits.
    std::string sha256() const;

    /// Gives it its name, for good.
    void moveIntoPlace();

private:
    [[noreturn]] void fail() const;
    void readAll();

    const std::filesystem::path m_destination;
    const std::filesystem::path m_path;
    Descriptor m_file;
    QCryptographicHash m_hash{ QCryptographicHash::Sha256 };
    std::int64_t m_size = 0;
};

} // namespace vantry
