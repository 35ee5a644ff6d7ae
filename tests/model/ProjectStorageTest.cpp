#include "model/ProjectStorage.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ProjectStorageTest : public testing::Test {
protected:
    void put(const fs::path& file)
    {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "something";
    }

    const test::TemporaryFolder m_folder;
    const fs::path m_root = m_folder / "Videos/Vantry";
    const ProjectStorage m_storage{ m_root };
};

const QDateTime evening(QDate(2026, 11, 16), QTime(20, 25, 3));

} // namespace

TEST_F(ProjectStorageTest, aNewFolderIsNamedAfterItsSecondAndNeverShared)
{
    EXPECT_EQ(m_storage.createFolder(evening), m_root / "2026-11-16T202503");
    EXPECT_EQ(m_storage.createFolder(evening), m_root / "2026-11-16T202503-2");
    EXPECT_TRUE(fs::is_directory(m_root / "2026-11-16T202503-2"));
}

TEST_F(ProjectStorageTest, recentListsFoldersWithAProjectNewestFirst)
{
    EXPECT_THAT(m_storage.recent(), IsEmpty()) << "there is no root yet";
    put(m_root / "2026-01-02T090000/project.json");
    put(m_root / "2026-01-10T080000/project.json");
    put(m_root / "2026-01-11T080000/clip-1.mov");
    fs::create_directories(m_root / "2026-01-12T080000/project.json");
    put(m_root / "notes.txt");
    EXPECT_THAT(m_storage.recent(), ElementsAre(m_root / "2026-01-10T080000", m_root / "2026-01-02T090000"));
}

TEST_F(ProjectStorageTest, onlyAnEmptyFolderIsRemoved)
{
    fs::create_directories(m_root / "empty");
    put(m_root / "full/clip-1.mov");
    put(m_root / "file");
    for (const char* name : { "empty", "full", "file", "never there" })
        ProjectStorage::removeIfEmpty(m_root / name);
    EXPECT_FALSE(fs::exists(m_root / "empty"));
    EXPECT_TRUE(fs::exists(m_root / "full/clip-1.mov"));
    EXPECT_TRUE(fs::exists(m_root / "file"));
}

TEST(NewProjectName, isWrittenAsTheLocaleWritesDates)
{
    const auto name = [](QLocale::Language language, QLocale::Territory territory) {
        return newProjectName(evening, QLocale(language, territory)).toStdString();
    };
    EXPECT_EQ(newProjectName(evening, QLocale::c()).toStdString(), "Recording Nov 16, 2026 at 8:25 PM");
    EXPECT_EQ(name(QLocale::German, QLocale::Germany), "Recording 16. Nov. 2026, 20:25");
    EXPECT_EQ(name(QLocale::Spanish, QLocale::Spain), "Recording 16 de nov de 2026, 20:25");
}

} // namespace vantry
