#include "transcribe/SpeechFile.h"

#include "base/AppError.h"
#include "project/Uuid.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

static_assert(std::endian::native == std::endian::little, "the header says that samples are little-endian");

template <typename T>
void append(std::string& bytes, T value)
{
    std::array<char, sizeof value> raw{};
    std::memcpy(raw.data(), &value, sizeof value);
    bytes.append(raw.rbegin(), raw.rend()); // The format is big-endian.
}

/// What stands before the samples. The last chunk may leave its length open: it ends with the file.
std::string makeHeader()
{
    std::string bytes("caff");
    append<std::uint16_t>(bytes, 1); // version
    append<std::uint16_t>(bytes, 0);
    bytes += "desc";
    append<std::int64_t>(bytes, 32);
    append<double>(bytes, sampleRate);
    bytes += "lpcm";
    append<std::uint32_t>(bytes, 3); // floats, little-endian
    append<std::uint32_t>(bytes, sizeof(float)); // bytes in a packet
    append<std::uint32_t>(bytes, 1); // samples in a packet
    append<std::uint32_t>(bytes, 1); // channels
    append<std::uint32_t>(bytes, 32); // bits in a sample
    bytes += "data";
    append<std::int64_t>(bytes, -1);
    append<std::uint32_t>(bytes, 0); // edits
    return bytes;
}

constexpr off_t headerSize = 68;

off_t offsetOf(SampleCount position)
{
    return headerSize + position.count() * static_cast<off_t>(sizeof(float));
}

[[noreturn]] void fail()
{
    throw AppError("The temporary file for speech: " + std::generic_category().message(errno));
}

Descriptor makeNamelessFile()
{
    const auto name = std::filesystem::temp_directory_path() / (Uuid::random().text() + ".caf");
    Descriptor file(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file || unlink(name.c_str()) != 0)
        fail();
    return file;
}

void writeAll(int file, const void* bytes, std::size_t size, off_t at)
{
    for (std::size_t written = 0; written < size;) {
        const auto count =
            pwrite(file, static_cast<const char*>(bytes) + written, size - written, at + static_cast<off_t>(written));
        if (count < 0 && errno != EINTR)
            fail();
        written += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
}

} // namespace

SpeechFile::SpeechFile()
    : SpeechFile(makeNamelessFile())
{
    const std::string header = makeHeader();
    writeAll(descriptor(), header.data(), header.size(), 0);
}

SpeechFile::SpeechFile(Descriptor file)
    : m_file(std::move(file))
{
}

void SpeechFile::write(SampleCount at, std::span<const float> samples)
{
    writeAll(descriptor(), samples.data(), samples.size_bytes(), offsetOf(at));
}

std::vector<float> SpeechFile::read(SampleCount from, SampleCount to) const
{
    to = std::min(to, length());
    std::vector<float> samples(static_cast<std::size_t>(std::max<std::int64_t>((to - from).count(), 0)));
    const auto size = samples.size() * sizeof(float);
    for (std::size_t filled = 0; filled < size;) {
        const auto count = pread(descriptor(), reinterpret_cast<char*>(samples.data()) + filled, size - filled,
            offsetOf(from) + static_cast<off_t>(filled));
        if (count == 0)
            throw AppError("The temporary file for speech is shorter than it was");
        if (count < 0 && errno != EINTR)
            fail();
        filled += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return samples;
}

SampleCount SpeechFile::length() const
{
    struct stat status { };
    if (fstat(descriptor(), &status) != 0)
        fail();
    return SampleCount(std::max<off_t>(status.st_size - headerSize, 0) / static_cast<off_t>(sizeof(float)));
}

} // namespace vantry
