#include "media/QuickTimeBoxes.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string_view>

namespace vantry {

namespace {

struct Box {
    std::array<char, 4> type{};
    std::uint64_t size = 0; ///< With its header; 0 reaches to the end of the file.

    bool is(std::string_view name) const { return std::string_view(type.data(), type.size()) == name; }
};

std::uint64_t readNumber(std::istream& file, int bytes)
{
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i)
        value = value << 8 | static_cast<std::uint8_t>(file.get());
    return value;
}

std::optional<Box> readBox(std::istream& file)
{
    constexpr std::uint64_t sizeFollows = 1;
    Box box;
    box.size = readNumber(file, 4);
    file.read(box.type.data(), box.type.size());
    if (box.size == sizeFollows)
        box.size = readNumber(file, 8);
    return file ? std::optional(box) : std::nullopt;
}

} // namespace

bool isIndexCutOff(const std::filesystem::path& movie)
{
    std::error_code unreadable;
    const auto end = std::filesystem::file_size(movie, unreadable);
    std::ifstream file(movie, std::ios::binary);
    if (unreadable || !file)
        return false;
    constexpr std::uint64_t smallest = 8;
    for (std::uint64_t at = 0; at < end;) {
        file.seekg(static_cast<std::streamoff>(at));
        const auto box = readBox(file);
        if (box && (box->size == 0 || box->is("moof")))
            return false;
        if (!box || box->size < smallest || box->size > end - at)
            return true;
        if (box->is("moov"))
            return false;
        at += box->size;
    }
    return false;
}

} // namespace vantry
