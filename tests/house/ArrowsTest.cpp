// Reads the includes of all sources and knows which of them the design allows.

#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

namespace vantry {

namespace fs = std::filesystem;

namespace {

using Rooms = std::set<std::string>;

const Rooms all{ "base", "project", "media", "platform", "capture", "render", "transcribe", "ai", "model", "ui", "app",
    "selftest" };

/// Whom a room may include, besides itself. The same list stands in docs/architecture.md.
const std::map<std::string, Rooms> arrows{
    { "base", {} },
    { "project", { "base" } },
    { "media", { "base" } },
    { "platform", { "base" } },
    { "capture", { "platform", "media", "project", "base" } },
    { "render", { "media", "project", "base", "platform" } },
    { "transcribe", { "platform", "media", "project", "base" } },
    { "ai", { "project", "base", "platform" } },
    { "model", { "ai", "transcribe", "render", "capture", "platform", "media", "project", "base" } },
    { "ui", { "model", "project", "base" } },
    { "app", all },
    { "selftest", all },
    { "overlayhelper", { "base" } },
    { "speechhelper", { "transcribe", "media", "project", "base" } },
};

const Rooms withoutInterface{ "base", "project", "media", "platform", "capture", "render", "transcribe", "ai" };

struct Include {
    bool isOurs; // "..." and not <...>
    std::string path;
};

std::vector<Include> includesOf(const fs::path& file)
{
    static const std::regex pattern(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
    std::vector<Include> found;
    std::ifstream stream(file);
    std::smatch match;
    for (std::string line; std::getline(stream, line);)
        if (std::regex_search(line, match, pattern))
            found.push_back({ match[1] == "\"", match[2] });
    return found;
}

bool matches(const std::string& path, const char* pattern)
{
    return std::regex_search(path, std::regex(pattern));
}

/// What is wrong with an include of a library in `room`, or nothing.
std::string faultOfLibrary(const std::string& room, const std::string& path)
{
    if (room != "media" && matches(path, "^lib(av|sw|postproc)"))
        return "only media uses libav*";
    if (withoutInterface.contains(room) && matches(path, "^(Qt)?(Quick|Qml|QQuick|QQml|QJS)"))
        return "an engine room knows nothing of Qt Quick";
    if (room == "project" && !matches(path, "^([a-z_]+|fcntl.h|unistd.h|sys/stat.h|nlohmann/.*)$"))
        return "project uses the standard library, files and nlohmann only";
    if (room == "project" && matches(path, "^(thread|mutex|shared_mutex|future|condition_variable|stop_token)$"))
        return "project has no threads";
    if (room != "overlayhelper" && matches(path, "^(QtWebEngine|QWebEngine)"))
        return "only the overlay helper has a web engine";
    return {};
}

/// What is wrong with an include of our own in `room`, or nothing.
std::string faultOfOurs(const std::string& room, const std::string& path)
{
    if (path.ends_with(".moc"))
        return {};
    const auto target = path.substr(0, path.find('/'));
    if (target == path || !arrows.contains(target))
        return "not written as \"room/File.h\"";
    if (target != room && !arrows.at(room).contains(target))
        return room + " may not include " + target;
    return {};
}

bool isSource(const fs::path& file)
{
    const auto extension = file.extension();
    return extension == ".h" || extension == ".cpp";
}

/// Every include that breaks the design, as "file: include: why".
std::vector<std::string> wrongArrows(const fs::path& sources)
{
    std::vector<std::string> wrong;
    for (const auto& entry : fs::recursive_directory_iterator(sources)) {
        if (!entry.is_regular_file() || !isSource(entry.path()))
            continue;
        const auto file = fs::relative(entry.path(), sources);
        const auto room = file.begin()->string();
        if (!arrows.contains(room)) {
            wrong.push_back(file.string() + ": " + room + " is no room of the house");
            continue;
        }
        for (const auto& include : includesOf(entry.path())) {
            const auto fault = include.isOurs ? faultOfOurs(room, include.path) : faultOfLibrary(room, include.path);
            if (!fault.empty())
                wrong.push_back(file.string() + ": " + include.path + ": " + fault);
        }
    }
    std::ranges::sort(wrong);
    return wrong;
}

} // namespace

TEST(Arrows, everyArrowOfThisHouseIsInTheDesign)
{
    EXPECT_THAT(wrongArrows(VANTRY_SOURCES), testing::IsEmpty());
}

TEST(Arrows, everyOtherArrowIsNamed)
{
    const test::TemporaryFolder house;
    const auto write = [&](const std::string& file, const std::string& line) {
        fs::create_directories((house / file).parent_path());
        std::ofstream(house / file) << "#pragma once\n" << line << "\n";
    };
    write("base/Log.h", "#include \"project/Project.h\"");
    write("capture/ClipWriter.cpp", "  #  include \"render/Bitmap.h\"");
    write("cellar/Wine.h", "#include <vector>");
    write("media/Muxer.h", "#include \"Packet.h\"");
    write("platform/deep/Screen.cpp", "#include <libswscale/swscale.h>");
    write("project/Project.h", "#include <QString>\n#include <thread>");
    write("render/Compositor.cpp", "#include <QQuickItem>\n#include <QtQml/qqml.h>");
    write("render/HTMLRenderer.cpp", "#include <QWebEnginePage>");
    write("ui/Timeline.cpp", "#include \"capture/Recorder.h\"\n#include \"model/AppModel.h\"\n#include \"Timeline.moc\"");
    EXPECT_THAT(wrongArrows(house.path()),
        testing::ElementsAre("base/Log.h: project/Project.h: base may not include project",
            "capture/ClipWriter.cpp: render/Bitmap.h: capture may not include render",
            "cellar/Wine.h: cellar is no room of the house", "media/Muxer.h: Packet.h: not written as \"room/File.h\"",
            "platform/deep/Screen.cpp: libswscale/swscale.h: only media uses libav*",
            "project/Project.h: QString: project uses the standard library, files and nlohmann only",
            "project/Project.h: thread: project has no threads",
            "render/Compositor.cpp: QQuickItem: an engine room knows nothing of Qt Quick",
            "render/Compositor.cpp: QtQml/qqml.h: an engine room knows nothing of Qt Quick",
            "render/HTMLRenderer.cpp: QWebEnginePage: only the overlay helper has a web engine",
            "ui/Timeline.cpp: capture/Recorder.h: ui may not include capture"));
}

} // namespace vantry
