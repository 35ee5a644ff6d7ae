#pragma once

#include <QString>

#include <filesystem>
#include <optional>

namespace vantry {

/// The OpenRouter key in a file of lines as a shell reads them: `export OPENROUTER_API_KEY="…"`, where "export" and the quotes may
/// be missing. The first line with that name counts. Nothing when the file cannot be read or is not UTF-8.
std::optional<QString> keyInTokensFile(const std::filesystem::path& file);

} // namespace vantry
