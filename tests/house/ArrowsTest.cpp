#include "house/Arrows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include <unistd.h>

namespace vantry {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A house of its own with one file for each arrow that is tried.
class SyntheticHouse : public testing::Test {
protected:
    ~SyntheticHouse() override { std::filesystem::remove_all(m_root); }

    void write(const std::string& file, const std::string& line)
    {
        std::filesystem::create_directories((m_root / file).parent_path());
        std::ofstream(m_root / file) << "#pragma once\n" << line << "\n";
    }

    std::filesystem::path m_root = std::filesystem::temp_directory_path() / ("house-" + std::to_string(getpid()));
};

} // namespace

TEST(Arrows, everyArrowOfThisHouseIsInTheDesign)
{
    EXPECT_THAT(wrongArrows(VANTRY_SOURCES), IsEmpty());
}

TEST_F(SyntheticHouse, arrowsOfTheDesignPass)
{
    write("base/AppError.h", "#include <QString>");
    write("project/Project.h", "#include <nlohmann/json.hpp>\n#include <unistd.h>");
    write("media/Demuxer.h", "#include <libavformat/avformat.h>");
    write("capture/ClipWriter.cpp", "#include \"media/Muxer.h\"");
    write("ui/Timeline.cpp", "#include <QQuickItem>\n#include \"model/AppModel.h\"\n#include \"Timeline.moc\"");
    write("app/main.cpp", "#include \"ui/Timeline.h\"");
    EXPECT_THAT(wrongArrows(m_root), IsEmpty());
}

TEST_F(SyntheticHouse, everyOtherArrowIsNamed)
{
    write("base/Log.h", "#include \"project/Project.h\"");
    write("capture/ClipWriter.cpp", "  #  include \"render/Bitmap.h\"");
    write("cellar/Wine.h", "#include <vector>");
    write("media/Muxer.h", "#include \"Packet.h\"");
    write("platform/deep/Screen.cpp", "#include <libswscale/swscale.h>");
    write("project/Project.h", "#include <QString>\n#include <thread>");
    write("render/Compositor.cpp", "#include <QQuickItem>\n#include <QtQml/qqml.h>");
    write("render/HTMLRenderer.cpp", "#include <QWebEnginePage>");
    write("ui/Timeline.cpp", "#include \"capture/Recorder.h\"");
    EXPECT_THAT(wrongArrows(m_root),
        ElementsAre("base/Log.h: project/Project.h: base may not include project",
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
