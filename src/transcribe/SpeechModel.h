#pragma once

#include "project/EnumNames.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace vantry {

/// The models to choose from: a larger one understands more and takes longer.
enum class SpeechModelSize { tiny, base, small };
template <>
inline constexpr std::array<std::string_view, 3> enumNames<SpeechModelSize>{ "tiny", "base", "small" };

/// A model of the better engine, as it is published.
struct SpeechModel {
    std::string file; ///< Its name, on the server and here.
    std::int64_t bytes = 0;
    std::string sha256; ///< Lower-case hexadecimal digits.
};

const SpeechModel& speechModel(SpeechModelSize size);

/// Where the models are published, for the name of a file to follow.
const std::string& speechModelSource();

/// Where the user's models are kept.
std::filesystem::path speechModelFolder();

} // namespace vantry
