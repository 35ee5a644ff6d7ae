#include "app/CommandLine.h"

#include "base/AppError.h"
#include "render/Exporter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>
#include <ranges>
#include <string_view>
#include <utility>

namespace vantry {

namespace {

/// What becomes of an option that is the last argument although it wants a value.
enum class Trailing { Ignored, Error };

struct Option {
    std::string_view name;
    std::string_view value; ///< What its value is called in the help; empty for an option without one.
    Trailing trailing = Trailing::Error;
    std::string_view help;
    void (*apply)(CommandLine&, const std::string& value);
};

int parseHeight(const std::string& text)
{
    int height = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), height);
    if (error != std::errc() || end != text.data() + text.size() || std::ranges::count(exportHeights, height) == 0)
        throw AppError("--height must be 720, 1080, 1440 or 2160, not \"" + text + "\"");
    return height;
}

constexpr std::array options{
    Option{ "--open", "DIR", Trailing::Ignored, "open the recording in a folder",
        [](CommandLine& line, const std::string& value) { line.open = value; } },
    Option{ "--autorecord", "N", Trailing::Ignored, "record the screen for N seconds",
        [](CommandLine& line, const std::string& value) { line.autorecord = value; } },
    Option{ "--export", "FILE", Trailing::Error,
        "with --open or --autorecord: write the recording as an MP4 video, without a window",
        [](CommandLine& line, const std::string& value) { line.exportFile = value; } },
    Option{ "--height", "H", Trailing::Error, "with --export: the video's height, 720, 1080, 1440 or 2160",
        [](CommandLine& line, const std::string& value) { line.height = parseHeight(value); } },
    Option{ "--retake-cancel", "DIR", Trailing::Ignored, "check that a cancelled retake changes nothing in a recording",
        [](CommandLine& line, const std::string& value) { line.retakeCancel = value; } },
    Option{ "--selftest", "", Trailing::Error, "run the built-in test, which this version does not have",
        [](CommandLine& line, const std::string&) { line.selftest = true; } },
    Option{ "--help", "", Trailing::Error, "print this text", [](CommandLine& line, const std::string&) { line.help = true; } },
    Option{
        "--version", "", Trailing::Error, "print the version", [](CommandLine& line, const std::string&) { line.version = true; } },
};

/// How many letters must be put in, taken out or replaced to make one text of the other.
std::size_t editDistance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({ replaced, row[j] + 1, row[j + 1] + 1 });
        }
    }
    return row.back();
}

/// The option that was most likely meant, if there is one.
const Option* closestOption(std::string_view name)
{
    const std::string_view letters = name.substr(std::min(name.find_first_not_of('-'), name.size()));
    if (letters.empty())
        return nullptr;
    // The last of those that begin so: "-h" means the help.
    for (const Option& option : std::views::reverse(options)) {
        if (option.name.substr(2).starts_with(letters))
            return &option;
    }
    const auto closest =
        std::ranges::min_element(options, {}, [&](const Option& option) { return editDistance(option.name.substr(2), letters); });
    return editDistance(closest->name.substr(2), letters) * 2 <= closest->name.size() - 2 ? &*closest : nullptr;
}

[[noreturn]] void refuse(const std::string& argument)
{
    if (!argument.starts_with('-'))
        throw AppError("Unexpected argument \"" + argument + "\". To open a recording, use --open \"" + argument + "\"");
    const Option* meant = closestOption(argument);
    throw AppError("Unknown option " + argument + ". " + (meant ? "Did you mean " + std::string(meant->name) + "?" : "See --help"));
}

/// Options that only mean something together.
void check(const CommandLine& line)
{
    if (line.help || line.version)
        return;
    if (line.exportFile && !line.open && !line.autorecord)
        throw AppError("--export needs a recording: add --open DIR or --autorecord N");
    if (line.height && !line.exportFile)
        throw AppError("--height needs --export FILE");
    if (line.exportFile && line.exportFile->empty())
        throw AppError("--export needs FILE");
}

} // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments)
{
    CommandLine line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto equals = arguments[i].starts_with("--") ? arguments[i].find('=') : std::string::npos;
        const std::string name = arguments[i].substr(0, equals);
        const auto option = std::ranges::find(options, name, &Option::name);
        if (option == options.end())
            refuse(name);
        const bool hasValue = !option->value.empty();
        if (!hasValue && equals != std::string::npos)
            throw AppError(name + " takes no value");
        if (!hasValue)
            option->apply(line, {});
        else if (equals != std::string::npos)
            option->apply(line, arguments[i].substr(equals + 1));
        else if (i + 1 < arguments.size())
            option->apply(line, arguments[++i]);
        else if (option->trailing == Trailing::Error)
            throw AppError(name + " needs " + std::string(option->value));
    }
    check(line);
    return line;
}

std::string commandLineHelp()
{
    std::string help = "Usage: vantry [OPTION]...\nRecord the screen, cut the recording and export it as a video.\n\n";
    constexpr std::size_t column = 24;
    for (const Option& option : options) {
        std::string line = "  " + std::string(option.name) + " " + std::string(option.value);
        line.resize(std::max(line.size() + 1, column), ' ');
        help += line + std::string(option.help) + "\n";
    }
    return help;
}

double autorecordWait(const std::string& seconds)
{
    constexpr double countdown = 3.5;
    constexpr double unspecified = 4;
    constexpr double longest = 14 * 24 * 3600;
    double value = 0;
    const auto [end, error] = std::from_chars(seconds.data(), seconds.data() + seconds.size(), value);
    const bool isNumber = error == std::errc() && end == seconds.data() + seconds.size() && std::isfinite(value);
    return std::min(isNumber ? value : unspecified, longest) + countdown;
}

} // namespace vantry
