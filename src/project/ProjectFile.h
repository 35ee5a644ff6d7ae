#pragma once

#include "project/Project.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace vantry {

// A project as the one JSON file of its folder: sorted keys, indented by two spaces, numbers as short as they can be and still read back
// to the same value. Errors are AppErrors that name the place, as "clips[2].keep: expected a number".

inline constexpr std::string_view projectFileName = "project.json";

/// No project file is larger than this. Nothing more is read, so that a hostile or damaged file cannot fill the memory.
inline constexpr std::size_t largestProjectFile = 64 << 20;

/// The file's bytes. Throws for what JSON cannot hold (numbers that are not finite, texts that are not UTF-8) and for what could not be
/// read again.
std::string encodeProject(const Project&);

/// The project in a file's bytes. Strict: what is missing, of another type or not among the known names is an error, there are no
/// defaults. Unknown keys are ignored; of a key that is written twice in one object the last one counts.
Project decodeProject(std::string_view bytes);

/// Reads the project file of `folder`.
Project loadProject(const std::filesystem::path& folder);

/// Replaces the project file of `folder`, atomically and durably: a crash leaves the old or the new file. On an error the old one stays.
void saveProject(const Project&, const std::filesystem::path& folder);

} // namespace vantry
