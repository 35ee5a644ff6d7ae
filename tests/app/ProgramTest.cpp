#include "media/Sound.h"
#include "project/ProjectFile.h"
#include "project/Timeline.h"
#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/MovieProbe.h"
#include "support/SilentServer.h"
#include "support/TemporaryFolder.h"
#include "support/TestMovie.h"
#include "support/Voice.h"
#include "support/XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
using testing::StartsWith;

namespace {

/// The instants between which something was done.
struct Around {
    std::chrono::steady_clock::time_point before = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point after{};
};

double seconds(std::chrono::steady_clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

Around pressKey(const std::string& key)
{
    Around around;
    test::runCommand("xdotool key ctrl+alt+" + key);
    around.after = std::chrono::steady_clock::now();
    return around;
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

    /// A project whose one clip of a second is shown again and again.
    fs::path recordProject(int repetitions)
    {
        EXPECT_EQ(run("--autorecord 1 --height 720 --export " + (m_home / "first.mp4").string()).status, 0);
        Project project = loadProject(onlyProject());
        const Clip clip = project.clips.at(0);
        project.clips.assign(static_cast<std::size_t>(repetitions), clip);
        saveProject(project, onlyProject());
        return onlyProject();
    }

    fs::path onlyProject() const { return fs::directory_iterator(m_home / "Videos/Vantry")->path(); }

    /// Waits until the program has written this to standard error.
    bool says(const std::string& text)
    {
        return holdsSoon([&] { return contents(errorFile()).find(text) != std::string::npos; });
    }

    /// Whether a clip is, or was, recorded.
    bool hasClip() const
    {
        if (!fs::exists(m_home / "Videos/Vantry"))
            return false;
        for (const auto& entry : fs::recursive_directory_iterator(m_home / "Videos/Vantry")) {
            if (entry.path().extension() == ".mov")
                return true;
        }
        return false;
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

TEST_F(ProgramTest, refusalsEndWithAnError)
{
    const Result unknown = run("--exprot");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_THAT(unknown.errors, HasSubstr("Did you mean --export?"));
    const Result selftest = run("--selftest");
    EXPECT_EQ(selftest.status, 1);
    EXPECT_THAT(selftest.errors, StartsWith("vantry: "));
    const Result nowhere = run("--autorecord 1000 --export " + (m_home / "nowhere/out.mp4").string());
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_THAT(nowhere.errors, HasSubstr("nowhere: No such file or directory"));
    EXPECT_THAT(unknown.output + selftest.output + nowhere.output, IsEmpty());
}

TEST_F(ProgramTest, whatCannotBeOpenedIsNotExported)
{
    const auto project = m_home / "broken";
    fs::create_directories(project);
    std::ofstream(project / "project.json") << "{";
    const Result result = run("--open " + project.string() + " --export " + (m_home / "out.mp4").string());
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("Could not open project: "));
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_FALSE(fs::exists(m_home / "out.mp4"));
}

TEST_F(ProgramTest, withoutADesktopItSaysSo)
{
    unsetenv("DISPLAY");
    const Result recording = run("--autorecord 1 --export " + (m_home / "out.mp4").string());
    EXPECT_EQ(recording.status, 1);
    EXPECT_THAT(recording.errors, HasSubstr("Could not start recording: "));

    const Result window = run("", "");
    EXPECT_EQ(window.status, 1);
    EXPECT_THAT(window.errors, HasSubstr("There is no desktop to show a window on"));
}

TEST_F(ProgramTest, whereNoServerAnswersItSaysSo)
{
    for (const std::string platform : { "", "xcb" }) {
        const Result window = run("", platform + " DISPLAY=:987"); // Numbers are given out from 0, and again when they are free.
        EXPECT_EQ(window.status, 1);
        EXPECT_EQ(window.errors, "vantry: There is no display server to connect to\n");
    }
}

TEST_F(ProgramTest, recordsExportsAndSaysWhere)
{
    const auto screen = std::make_unique<test::XServer>(640, 360);
    const auto video = m_home / "out.mp4";
    const Result result = run("--autorecord 2 --export " + video.string());
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, video.string() + "\n");
    EXPECT_THAT(result.errors, HasSubstr("Exporting…"));

    const Project project = loadProject(onlyProject());
    ASSERT_THAT(project.clips, SizeIs(1));
    EXPECT_NEAR(project.clips[0].keep, 2.5, 0.5) << "the half second is the one that starting may take";
    EXPECT_EQ(test::probeStream(video, "v:0")["codec_name"], "h264");
    EXPECT_EQ(test::probeStream(video, "v:0")["width"], "1920");
    EXPECT_EQ(test::probeStream(video, "v:0")["r_frame_rate"], "30/1");
    EXPECT_NEAR(test::probeEnd(video, "v:0"), project.clips[0].keep, 0.05);

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
    const Project project = loadProject(onlyProject());
    ASSERT_THAT(project.clips, SizeIs(1));
    EXPECT_GE(project.clips[0].duration, 1);
    EXPECT_NEAR(test::probeEnd(onlyProject() / project.clips[0].file, "v:0"), project.clips[0].duration, 0.05);
}

TEST_F(ProgramTest, aDiskThatRunsFullEndsTheClipWhileItCanBeCompleted)
{
    if (!canMount())
        GTEST_SKIP() << "There can be no disk of our own here";
    const test::XServer screen(640, 360);
    const Result result = recordOnSmallDisk(200, 40);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("Recording stopped: The disk is almost full"));
    const auto folder = fs::directory_iterator(m_home / "kept")->path();
    const Project project = loadProject(folder);
    ASSERT_THAT(project.clips, SizeIs(1));
    EXPECT_NEAR(test::probeEnd(folder / project.clips[0].file, "v:0"), project.clips[0].duration, 0.05);
}

TEST_F(ProgramTest, aFullDiskIsToldBeforeAnythingIsLost)
{
    if (!canMount())
        GTEST_SKIP() << "There can be no disk of our own here";
    const test::XServer screen(640, 360);
    const Result result = recordOnSmallDisk(100, 0);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("Could not start recording: The disk is full: "));
    EXPECT_TRUE(fs::is_empty(m_home / "kept"));
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
    const Project project = loadProject(onlyProject());
    ASSERT_THAT(project.clips, SizeIs(1));
    EXPECT_NEAR(test::probeEnd(onlyProject() / project.clips[0].file, "v:0"), project.clips[0].duration, 0.05);
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

    program = start("");
    ASSERT_TRUE(holdsSoon([&] { return fs::exists(folder / "project.json"); }));
    kill(program->pid(), SIGTERM);
    EXPECT_EQ(finish(*program).status, 0);
    const Project project = loadProject(folder);
    ASSERT_THAT(project.clips, SizeIs(1));
    EXPECT_GE(project.clips[0].duration, 2);
    EXPECT_EQ(project.clips[0].keep, project.clips[0].duration);
    EXPECT_EQ(project.layouts.size(), 1U);
    EXPECT_NEAR(test::probeEnd(folder / project.clips[0].file, "v:0"), project.clips[0].duration, 0.05);
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

    // Each press lies between the two instants around the command that makes it.
    const auto first = pressKey("2");
    ASSERT_TRUE(holdsSoon([&] { return layouts().back().layout == Layout::bubble; }));
    const double firstTime = layouts().back().time;
    const auto second = pressKey("3");
    ASSERT_TRUE(holdsSoon([&] { return layouts().back().layout == Layout::screen; }));
    const double distance = layouts().back().time - firstTime;
    EXPECT_GE(distance, seconds(second.before - first.after) - 0.05);
    EXPECT_LE(distance, seconds(second.after - first.before) + 0.05);

    pressKey("r");
    ASSERT_TRUE(holdsSoon([&] { return !loadProject(onlyProject()).clips.empty(); }));
    EXPECT_GT(loadProject(onlyProject()).clips[0].keep, layouts().back().time);
    kill(program->pid(), SIGTERM);
    EXPECT_EQ(finish(*program).status, 0);
}

TEST_F(ProgramTest, anInterruptedExportLeavesNoFile)
{
    const test::XServer screen(640, 360);
    const auto project = recordProject(20);
    const auto before = std::distance(fs::directory_iterator(m_home.path()), {});
    const auto program = start("--open " + project.string() + " --export " + (m_home / "out.mp4").string());
    ASSERT_TRUE(says("Exporting… 1"));
    kill(program->pid(), SIGTERM);
    EXPECT_EQ(finish(*program).status, 128 + SIGTERM);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_home.path()), {}), before);
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
    const Result result = run("--retake-cancel " + recordProject(10).string());
    EXPECT_EQ(result.status, 0) << result.output << result.errors;
    EXPECT_THAT(result.output, HasSubstr("phase before cancel: countdown(2)\n✓ cancelled retake cut nothing ("));

    const Result broken = run("--retake-cancel " + (m_home / "missing").string());
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.output, HasSubstr("✗ cancelled retake changed the project: "));
}

} // namespace vantry
