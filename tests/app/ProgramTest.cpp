#include "media/Sound.h"
#include "project/ProjectFile.h"
#include "project/Timeline.h"
#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/MovieProbe.h"
#include "support/SilentServer.h"
#include "support/TemporaryFolder.h"
#include "support/TestMovie.h"
#include "support/TestProject.h"
#include "support/Voice.h"
#include "support/XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

namespace vantry {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::holdsSoon;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

void pressKey(const std::string& key)
{
    test::runCommand("xdotool key ctrl+alt+" + key);
}

/// Runs the real program, with a home of its own.
class ProgramTest : public testing::Test {
protected:
    struct Result {
        int status;
        std::string output;
        std::string errors;
    };

    /// `arguments` as the shell takes them, for it and for the toolkit's `platform`.
    std::unique_ptr<test::Program> start(const std::string& arguments, const std::string& platform = "offscreen")
    {
        fs::remove(errorFile());
        const std::string environment = "HOME='" + m_home.path().string() + "' XDG_CONFIG_HOME='" + (m_home / "config").string()
            + "' LC_ALL=C.UTF-8 QT_QPA_PLATFORM=" + platform + " ";
        return std::make_unique<test::Program>(std::vector<std::string>{ "sh", "-c",
            "exec env " + environment + VANTRY_PROGRAM " " + arguments + " >'" + outputFile().string() + "' 2>'"
                + errorFile().string() + "'" });
    }

    Result finish(test::Program& program)
    {
        const int status = program.wait();
        return { status, contents(outputFile()), contents(errorFile()) };
    }

    Result run(const std::string& arguments, const std::string& platform = "offscreen")
    {
        return finish(*start(arguments, platform));
    }

    /// Whether there can be a disk of our own here: some containers do not let anybody mount one.
    static bool canMount()
    {
        return test::Program({ "unshare", "--user", "--map-root-user", "--mount", "mount", "-t", "tmpfs", "none", "/mnt" }).wait()
            == 0;
    }

    /// Records onto a disk of its own of so many MB, which is filled up but for the last `left` as soon as there is a clip. What is
    /// on it in the end is copied to `kept`.
    Result recordOnSmallDisk(int size, int left)
    {
        const auto disk = (m_home / "Videos").string();
        fs::create_directories(disk);
        const std::string fill = "(until ls " + disk + "/Vantry/*/*.mov; do sleep 0.1; done; head -c " + std::to_string(size - left)
            + "M /dev/zero) >" + disk + "/filler 2>&1 &";
        const std::string command = "mount -t tmpfs -o size=" + std::to_string(size) + "M none " + disk + " || exit; " + fill
            + " HOME=" + m_home.path().string() + " QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 " VANTRY_PROGRAM
            + " --autorecord 60 --export " + (m_home / "out.mp4").string() + " >" + outputFile().string() + " 2>"
            + errorFile().string() + "; status=$?; kill $!; rm -f " + disk + "/filler; mkdir -p " + disk + "/Vantry; cp -r " + disk
            + "/Vantry " + (m_home / "kept").string() + "; exit $status";
        test::Program program({ "unshare", "--user", "--map-root-user", "--mount", "sh", "-c", command });
        return finish(program);
    }

    fs::path onlyProject() const { return fs::directory_iterator(m_home / "Videos/Vantry")->path(); }

    /// Expects that the project has one clip, and that it is as long as the project says.
    static Clip onlyClip(const fs::path& folder)
    {
        const Clip clip = loadProject(folder).clips.at(0);
        EXPECT_THAT(loadProject(folder).clips, SizeIs(1));
        EXPECT_NEAR(test::probeEnd(folder / clip.file, "v:0"), clip.duration, 0.05);
        return clip;
    }

    /// Waits until the program has written this to standard error.
    bool says(const std::string& text)
    {
        return holdsSoon([&] { return contents(errorFile()).find(text) != std::string::npos; });
    }

    /// Whether a clip is, or was, recorded.
    bool hasClip() const
    {
        return fs::exists(m_home / "Videos/Vantry")
            && std::ranges::any_of(fs::recursive_directory_iterator(m_home / "Videos/Vantry"),
                [](const auto& entry) { return entry.path().extension() == ".mov"; });
    }

    fs::path outputFile() const { return m_home / "output"; }
    fs::path errorFile() const { return m_home / "errors"; }

    static std::string contents(const fs::path& file)
    {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }

    const test::TemporaryFolder m_home;
};

} // namespace

TEST_F(ProgramTest, answersQuestionsAboutItself)
{
    const Result help = run("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("--autorecord N"));
    const Result version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "Vantry " VANTRY_VERSION "\n");
}

TEST_F(ProgramTest, refusalsEndWithAnErrorAndNothingElse)
{
    unsetenv("DISPLAY");
    std::ofstream(m_home / "project.json") << "{";
    const std::string exporting = " --export " + (m_home / "out.mp4").string();
    const std::string noServer = " DISPLAY=:987"; // Numbers are given out from 0, and again when they are free.
    struct Case {
        std::string arguments;
        std::string error;
        std::string platform = "offscreen";
    };
    for (const auto& [arguments, error, platform] : {
             Case{ "--exprot", "Did you mean --export?" },
             Case{ "--selftest", "vantry: " },
             Case{ "--autorecord 1000 --export " + (m_home / "nowhere/out.mp4").string(), "nowhere: No such file or directory" },
             Case{ "--open " + m_home.path().string() + exporting, "Could not open project: " },
             Case{ "--autorecord 1" + exporting, "Could not start recording: " },
             Case{ "", "There is no desktop to show a window on", "" },
             Case{ "", "vantry: There is no display server to connect to\n", noServer },
             Case{ "", "vantry: There is no display server to connect to\n", "xcb" + noServer },
         }) {
        SCOPED_TRACE(platform + " " + arguments);
        const Result result = run(arguments, platform);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, HasSubstr(error));
        EXPECT_THAT(result.output, IsEmpty());
    }
    EXPECT_FALSE(fs::exists(m_home / "out.mp4"));
}

TEST_F(ProgramTest, recordsExportsAndSaysWhere)
{
    const auto screen = std::make_unique<test::XServer>(640, 360);
    const auto video = m_home / "out.mp4";
    const Result result = run("--autorecord 2 --export " + video.string());
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, video.string() + "\n");
    EXPECT_THAT(result.errors, HasSubstr("Exporting…"));

    const Clip clip = onlyClip(onlyProject());
    EXPECT_NEAR(clip.keep, 2.5, 0.5) << "the half second is the one that starting may take";
    EXPECT_EQ(test::probeStream(video, "v:0")["width"], "1920");
    EXPECT_NEAR(test::probeEnd(video, "v:0"), clip.keep, 0.05);

    // What was recorded can be exported later, where there is no display at all.
    unsetenv("DISPLAY");
    const Result again = run("--open " + onlyProject().string() + " --height 720 --export " + (m_home / "again.mp4").string());
    EXPECT_EQ(again.status, 0) << again.errors;
    EXPECT_EQ(test::probeStream(m_home / "again.mp4", "v:0")["height"], "720");
}

TEST_F(ProgramTest, aRecordingOutlivesTheScreenOfItsWindow)
{
    auto screen = std::make_unique<test::XServer>(640, 360);
    const auto program = start("--autorecord 60", "xcb QT_QUICK_BACKEND=software");
    ASSERT_TRUE(holdsSoon([this] { return hasClip(); }));
    std::this_thread::sleep_for(1s); // Of the clip's time.
    screen.reset();
    const Result result = finish(*program);
    ASSERT_TRUE(fs::exists(onlyProject() / "project.json")) << result.status << ": " << result.errors;
    EXPECT_GE(onlyClip(onlyProject()).duration, 1);
}

TEST_F(ProgramTest, aFullDiskIsToldBeforeAnythingIsLost)
{
    if (!canMount())
        GTEST_SKIP() << "There can be no disk of our own here";
    const test::XServer screen(640, 360);
    const Result full = recordOnSmallDisk(100, 0);
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.errors, HasSubstr("Could not start recording: The disk is full: "));
    EXPECT_TRUE(fs::is_empty(m_home / "kept"));

    fs::remove_all(m_home / "kept");
    const Result almost = recordOnSmallDisk(200, 40);
    EXPECT_EQ(almost.status, 1);
    EXPECT_THAT(almost.errors, HasSubstr("Recording stopped: The disk is almost full"));
    onlyClip(fs::directory_iterator(m_home / "kept")->path());
}

TEST_F(ProgramTest, anInterruptedRecordingKeepsItsClip)
{
    const test::XServer screen(640, 360);
    const auto program = start("--autorecord 60 --export " + (m_home / "out.mp4").string());
    ASSERT_TRUE(says("Recording"));
    ASSERT_TRUE(holdsSoon([this] { return hasClip(); }));
    kill(program->pid(), SIGINT);
    const Result result = finish(*program);
    EXPECT_EQ(result.status, 128 + SIGINT);
    EXPECT_THAT(result.errors, HasSubstr(onlyProject().string()));
    onlyClip(onlyProject());
    EXPECT_FALSE(fs::exists(m_home / "out.mp4"));
}

TEST_F(ProgramTest, aRecordingOfAProgramThatWasKilledIsKept)
{
    const test::XServer screen(640, 360);
    auto program = start("--autorecord 60");
    ASSERT_TRUE(holdsSoon([this] { return hasClip(); }));
    for (int i = 0; i < 40; ++i)
        test::runCommand("xdotool mousemove " + std::to_string(10 * i) + " 50; sleep 0.1");
    program->end(SIGKILL);
    const auto folder = onlyProject();
    EXPECT_FALSE(fs::exists(folder / "project.json"));
    // Of other programs that were killed.
    std::ofstream(folder / ".project.json.0A1B2C3D-0000-4000-8000-000000000000") << "{";
    fs::create_directory(m_home / "Videos/.vantry-export-a1B2c3");

    program = start("");
    ASSERT_TRUE(holdsSoon([&] { return fs::exists(folder / "project.json"); }));
    EXPECT_TRUE(holdsSoon([&] { return std::distance(fs::directory_iterator(m_home / "Videos"), {}) == 1; }));
    kill(program->pid(), SIGTERM);
    EXPECT_EQ(finish(*program).status, 0);
    const Clip clip = onlyClip(folder);
    EXPECT_GE(clip.duration, 2);
    EXPECT_EQ(clip.keep, clip.duration);
    EXPECT_EQ(loadProject(folder).layouts.size(), 1U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << "the project and its clip";
}

TEST_F(ProgramTest, keysSteerARecordingFromOutside)
{
    const test::XServer screen(640, 360);
    const auto program = start("");
    const auto layouts = [this] {
        return fs::exists(onlyProject() / "project.json") ? loadProject(onlyProject()).layouts : std::vector<LayoutEvent>();
    };
    ASSERT_TRUE(holdsSoon([&] {
        pressKey("1");
        return contents(m_home / "config/vantry/settings.ini").find("layout=camera") != std::string::npos;
    }));
    pressKey("r");
    ASSERT_TRUE(holdsSoon([&] { return hasClip(); }));
    // Until the clip is long enough for a change of its own.
    ASSERT_TRUE(holdsSoon([&] {
        pressKey("c");
        return layouts().size() >= 2;
    }));

    for (const auto& [key, layout] : { std::pair("2", Layout::bubble), { "3", Layout::screen } }) {
        pressKey(key);
        ASSERT_TRUE(holdsSoon([&] { return layouts().back().layout == layout; }));
    }
    pressKey("r");
    ASSERT_TRUE(holdsSoon([&] { return !loadProject(onlyProject()).clips.empty(); }));
    EXPECT_GT(loadProject(onlyProject()).clips[0].keep, layouts().back().time);
    kill(program->pid(), SIGTERM);
    EXPECT_EQ(finish(*program).status, 0);
}

TEST_F(ProgramTest, anInterruptedExportLeavesNoFile)
{
    test::writeTestProject(m_home / "project", 4, 10);
    const auto before = std::distance(fs::directory_iterator(m_home.path()), {}) + 2; // What it says.
    const auto program = start("--open " + (m_home / "project").string() + " --export " + (m_home / "out.mp4").string());
    ASSERT_TRUE(says("Exporting… 1"));
    kill(program->pid(), SIGTERM);
    EXPECT_EQ(finish(*program).status, 128 + SIGTERM);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_home.path()), {}), before);
}

TEST_F(ProgramTest, whatAKilledExportLeftIsGoneWithTheNextOne)
{
    test::writeTestProject(m_home / "project", 4, 10);
    const auto command = "--open " + (m_home / "project").string() + " --export " + (m_home / "out.mp4").string();
    const auto left = [this] {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_home.path()))
            if (const auto name = entry.path().filename().string(); name.starts_with(".vantry-export-"))
                names.push_back(name);
        return names;
    };
    const auto killed = start(command);
    ASSERT_TRUE(says("Exporting… 1"));
    killed->end(SIGKILL);
    const auto before = left();
    ASSERT_THAT(before, SizeIs(1));

    const auto program = start(command);
    ASSERT_TRUE(says("Exporting… 1"));
    EXPECT_THAT(left(), SizeIs(1));
    EXPECT_NE(left(), before);
    kill(program->pid(), SIGTERM);
    finish(*program);
    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(ProgramTest, aSilentNetworkDoesNotKeepItFromEnding)
{
    const auto folder = m_home / "spoken";
    const auto voice = test::joined({ test::quiet(0.5), test::spoken("Welcome to my channel"), test::quiet(0.5) });
    const double length = static_cast<double>(voice.size()) / sampleRate;
    fs::create_directories(folder);
    test::writeTestMovie(folder / "clip.mov", { .duration = length, .screen = { 64, 48 }, .audio = true, .voice = voice });
    saveProject({ .clips = { { .file = "clip.mov", .duration = length, .keep = length } } }, folder);
    const test::XServer screen(640, 360);
    const test::SilentServer server;
    setenv("https_proxy", ("pac+" + server.url() + "/proxy.pac").c_str(), 1);
    const auto program = start("--open " + folder.string());
    unsetenv("https_proxy");
    constexpr int longest = 60'000;
    ASSERT_TRUE(server.isAsked(longest)) << "for the way to a speech model";
    kill(program->pid(), SIGTERM);
    EXPECT_EQ(finish(*program).status, 0) << "and it still says nothing";
}

TEST_F(ProgramTest, checksThatACancelledRetakeChangesNothing)
{
    const test::XServer screen(640, 360);
    test::writeTestProject(m_home / "project", 2, 5);
    const Result result = run("--retake-cancel " + (m_home / "project").string());
    EXPECT_EQ(result.status, 0) << result.output << result.errors;
    EXPECT_THAT(result.output, HasSubstr("phase before cancel: countdown(2)\n✓ cancelled retake cut nothing ("));

    const Result broken = run("--retake-cancel " + (m_home / "missing").string());
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.output, HasSubstr("✗ cancelled retake changed the project: "));
}

} // namespace vantry
