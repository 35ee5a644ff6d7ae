#include "project/ProjectFile.h"

#include "base/AppError.h"
#include "project/DurableFile.h"
#include "project/ProjectLimits.h"
#include "support/FileSizeLimit.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include <sys/stat.h>

namespace vantry {

using test::TemporaryFolder;

namespace {

namespace fs = std::filesystem;

Project named(const std::string& name)
{
    return { .name = name };
}

std::size_t entries(const fs::path& folder)
{
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

template <typename Action>
std::string errorOf(Action action)
{
    try {
        action();
        return {};
    } catch (const AppError& error) {
        return error.what();
    }
}

} // namespace

TEST(ProjectFile, keepsPermissionsAndGivesNewFilesTheUsual)
{
    const TemporaryFolder folder;
    const auto file = folder / "project.json";
    const auto oldMask = ::umask(027);
    saveProject(named("new"), folder.path());
    ::umask(oldMask);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
    fs::permissions(file, fs::perms(0604));
    saveProject(named("old"), folder.path());
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0604));
}

TEST(ProjectFile, aFailedSaveKeepsTheOldFileAndLeavesNothingBeside)
{
    const TemporaryFolder folder;
    saveProject(named("old"), folder.path());
    {
        const test::FileSizeLimit full(1000);
        EXPECT_EQ(errorOf([&] { saveProject(named(std::string(5000, 'a')), folder.path()); }), "project.json: File too large");
    }
    EXPECT_NE(errorOf([&] { saveProject(named("\xff"), folder.path()); }), "");
    EXPECT_EQ(loadProject(folder.path()).name, "old");
    EXPECT_EQ(entries(folder.path()), 1u);
}

TEST(ProjectFile, saysWhyItCannotSaveOrLoad)
{
    const TemporaryFolder folder;
    const auto file = folder / "project.json";
    EXPECT_EQ(errorOf([&] { saveProject(Project(), folder / "gone"); }), "project.json: No such file or directory");
    fs::create_directory(file);
    EXPECT_EQ(errorOf([&] { saveProject(Project(), folder.path()); }), "project.json: Is a directory");
    fs::remove(file);
    const auto error = [&] { return errorOf([&] { loadProject(folder.path()); }); };
    std::ofstream(file) << "{";
    EXPECT_EQ(error(), "line 1, column 2: not valid JSON");
    fs::resize_file(file, largestProjectFile + 1);
    EXPECT_EQ(error(), "project.json: larger than 64 MB");
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(error(), "project.json: not a file");
}

TEST(ProjectFile, aReaderFindsTheOldOrTheNewFile)
{
    const TemporaryFolder folder;
    const std::vector<Project> versions{ named(std::string(100'000, 'a')), named("b") };
    saveProject(versions[0], folder.path());
    std::jthread writer([&](std::stop_token stop) {
        for (std::size_t round = 0; !stop.stop_requested(); ++round)
            saveProject(versions[round % 2], folder.path());
    });
    for (int round = 0; round < 300; ++round) {
        const auto name = loadProject(folder.path()).name;
        ASSERT_TRUE(name == versions[0].name || name == versions[1].name);
    }
}

TEST(ProjectFile, whatAKilledProgramLeftIsRemovedWhileOthersSave)
{
    const TemporaryFolder folder;
    const auto file = folder / "project.json";
    const auto left = folder / ".project.json.0A1B2C3D-0000-4000-8000-000000000000";
    const std::vector<fs::path> others{ folder / ".project.json.swp", folder / ".clip-1.mov.journal",
        folder / ".notes.0A1B2C3D-0000-4000-8000-000000000000" };
    for (const auto& path : others)
        std::ofstream(path) << "mine";
    std::jthread writer([&](std::stop_token stop) {
        while (!stop.stop_requested())
            EXPECT_NO_THROW(saveProject(named("whole"), folder.path()));
    });
    for (int round = 0; round < 300; ++round) {
        std::ofstream(left) << "half";
        removeLeftovers(file);
        ASSERT_FALSE(fs::exists(left));
    }
    writer = {};
    EXPECT_EQ(loadProject(folder.path()).name, "whole");
    EXPECT_EQ(entries(folder.path()), 1 + others.size());
}

} // namespace vantry
