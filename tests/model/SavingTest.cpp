#include "model/ModelTest.h"
#include "model/QuitFlow.h"

#include <gmock/gmock.h>

#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using test::pumpUntil;
using testing::SizeIs;
using testing::StartsWith;

namespace {

/// A model with an open project, whose folder can be taken away, so that nothing can be saved into it.
class SavingTest : public test::ModelTest {
protected:
    SavingTest()
    {
        m_model.open(m_open);
        QObject::connect(&m_model, &AppModel::readyToQuit, &m_model, [this] { m_isReadyToQuit = true; });
    }

    void takeAway() const { fs::rename(m_open, m_away); }
    void giveBack() const { fs::rename(m_away, m_open); }

    QFuture<bool> name(const std::string& name)
    {
        return m_model.edit(Rebuild::No, [&](Project& project) { project.name = name; });
    }

    std::string status() const { return m_model.status().value_or(QString()).toStdString(); }

    const fs::path m_open = writeProject("open");
    const fs::path m_away = m_folder / "away";
    bool m_isReadyToQuit = false;
};

} // namespace

TEST_F(SavingTest, anEditSaysWhetherItIsOnTheDiskAndTheNewestWins)
{
    std::vector<QFuture<bool>> saved;
    for (int i = 0; i < 100; ++i)
        saved.push_back(name(std::to_string(i)));
    for (const auto& future : saved)
        EXPECT_TRUE(future.result());
    EXPECT_EQ(loadProject(m_open).name, "99");

    takeAway();
    EXPECT_FALSE(name("lost").result());
    giveBack();
    EXPECT_TRUE(name("found").result());
    EXPECT_EQ(loadProject(m_open).name, "found");
}

TEST_F(SavingTest, aJournalIsKeptUntilTheClipIsInAProjectOnTheDisk)
{
    const fs::path journal = m_open / ".clip-8.mov.journal";
    std::ofstream(m_open / "clip-8.mov") << "a movie";
    std::ofstream(journal) << "its journal";
    takeAway();
    m_model.addClip(Rebuild::No, "clip-8.mov", 5);
    ASSERT_TRUE(pumpUntil([&] { return alert().starts_with("Could not save the project: "); }));
    EXPECT_THAT(status(), StartsWith("A recording is not saved yet: open: "));
    giveBack();
    EXPECT_TRUE(fs::exists(journal));

    // Somebody goes to another project and comes back before it is tried again.
    m_model.open(writeProject("other"));
    m_model.open(m_open / "");
    EXPECT_THAT(m_model.project()->clips, SizeIs(2));
    ASSERT_TRUE(pumpUntil([&] { return loadProject(m_open).clips.size() == 2; })) << "by itself";
    ASSERT_TRUE(pumpUntil([&] { return !fs::exists(journal); }));
    EXPECT_TRUE(pumpUntil([&] { return !status().starts_with("A recording is not saved yet"); }));
}

TEST_F(SavingTest, quittingSaysWhatWouldBeLost)
{
    int wanted = 0;
    QObject::connect(&m_model, &AppModel::attentionWanted, &m_model, [&] { ++wanted; });
    takeAway();
    name("unsaved");
    const auto quit = [&] {
        m_model.quit();
        ASSERT_TRUE(pumpUntil([&] { return m_isReadyToQuit || !m_model.quitting()->problem().isEmpty(); }));
    };
    quit();
    EXPECT_FALSE(m_isReadyToQuit);
    EXPECT_THAT(m_model.quitting()->problem().toStdString(), StartsWith("Could not save the project: "));
    EXPECT_EQ(wanted, 1);
    EXPECT_EQ(alert(), "") << "one text is enough";

    m_model.quitting()->stay();
    EXPECT_EQ(m_model.quitting()->problem(), QString());
    giveBack();
    quit();
    EXPECT_TRUE(m_isReadyToQuit);
    EXPECT_EQ(loadProject(m_open).name, "unsaved");
}

} // namespace vantry
