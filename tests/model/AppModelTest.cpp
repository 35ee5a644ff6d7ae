#include "model/AppModel.h"
#include "model/ModelTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::StartsWith;

class AppModelTest : public test::ModelTest { };

TEST_F(AppModelTest, anEditIsStoredCountedAndSaved)
{
    m_model.open(writeProject("one"));
    const int revision = m_model.revision();
    m_model.edit(Rebuild::No, [](Project& project) { project.name = "first"; });
    EXPECT_EQ(m_model.revision(), revision);
    m_model.edit(Rebuild::Yes, [](Project& project) { project.bubbleSize = 0.5; });
    EXPECT_EQ(m_model.revision(), revision + 1);
    EXPECT_EQ(m_model.project()->name, "first");
    EXPECT_EQ(loadProject(*m_model.folder()).name, "first");
    EXPECT_EQ(loadProject(*m_model.folder()).bubbleSize, 0.5);
}

TEST_F(AppModelTest, anEditWithoutAProjectDoesNothing)
{
    bool called = false;
    m_model.edit(Rebuild::Yes, [&](Project&) { called = true; });
    EXPECT_FALSE(called);
    EXPECT_EQ(m_model.revision(), 0);
}

TEST_F(AppModelTest, anEditThatCannotBeSavedStaysInMemory)
{
    m_model.open(writeProject("one"));
    fs::remove_all(*m_model.folder());
    m_model.edit(Rebuild::No, [](Project& project) { project.name = "kept"; });
    EXPECT_EQ(m_model.project()->name, "kept");
    EXPECT_THAT(alert(), StartsWith("Could not save the project: "));
    EXPECT_FALSE(fs::exists(*m_model.folder()));
}

TEST_F(AppModelTest, aProjectThatCannotBeOpenedChangesNothing)
{
    m_model.open(writeProject("one"));
    const fs::path opened = *m_model.folder();
    const int revision = m_model.revision();

    m_model.open(m_root / "missing");
    EXPECT_THAT(alert(), StartsWith("Could not open project: "));
    m_model.setAlert(std::nullopt);

    std::ofstream(writeProject("two") / "project.json") << R"({"name": "no more than a name"})";
    m_model.open(m_root / "two");
    EXPECT_THAT(alert(), StartsWith("Could not open project: "));

    EXPECT_EQ(m_model.folder(), opened);
    EXPECT_EQ(m_model.project()->name, "one");
    EXPECT_EQ(m_model.revision(), revision);
    EXPECT_EQ(m_model.phase(), Phase::editing());
}

TEST_F(AppModelTest, openingReplacesTheProjectAndEdits)
{
    m_model.open(writeProject("one", 10));
    m_model.open(writeProject("two", 20));
    EXPECT_EQ(m_model.project()->name, "two");
    EXPECT_EQ(m_model.property("projectLength").toDouble(), 20);
    EXPECT_EQ(m_model.phase(), Phase::editing());
    EXPECT_EQ(m_model.revision(), 2);
    EXPECT_EQ(m_model.pendingSeek(), 0);
    EXPECT_THAT(alert(), IsEmpty());
}

TEST_F(AppModelTest, aNewProjectIsMadeOfTheSettings)
{
    m_model.settings()->setSetupLayout(Layout::bubble);
    m_model.settings()->setSetupCorner(Corner::topLeft);
    m_model.settings()->setSetupBubble(0.4);
    m_model.settings()->setSetupBlur(true);
    m_model.settings()->setSetupCrop(CropRect{ 0, 0.5, 1, 0.5 });
    m_model.newProject();
    const Project& project = *m_model.project();
    EXPECT_EQ(project.layouts, (std::vector<LayoutEvent>{ { 0, Layout::bubble, Corner::topLeft } }));
    EXPECT_EQ(project.bubbleSize, 0.4);
    EXPECT_EQ(project.blurBackground, true);
    EXPECT_EQ(project.systemVolume, std::nullopt);
    EXPECT_EQ(project.screenCrop, (CropRect{ 0, 0.5, 1, 0.5 }));
    EXPECT_TRUE(fs::is_empty(*m_model.folder())) << "nothing is saved before there is a clip";
}

TEST_F(AppModelTest, aDroppedProjectTakesAnEmptyFolderAlong)
{
    m_model.newProject();
    const fs::path empty = *m_model.folder();
    m_model.dropEmptyProject();
    EXPECT_FALSE(fs::exists(empty));
    EXPECT_FALSE(m_model.project());
    EXPECT_FALSE(m_model.folder());

    m_model.newProject();
    const fs::path full = *m_model.folder();
    std::ofstream(full / "clip-1.mov") << "a movie";
    m_model.dropEmptyProject();
    EXPECT_TRUE(fs::exists(full / "clip-1.mov"));
    EXPECT_FALSE(m_model.folder());
}

TEST_F(AppModelTest, anEqualValueNotifiesNobody)
{
    int heard = 0;
    const auto hear = [&] { ++heard; };
    QObject::connect(&m_model, &AppModel::phaseChanged, &m_model, hear);
    QObject::connect(&m_model, &AppModel::alertChanged, &m_model, hear);
    QObject::connect(&m_model, &AppModel::playheadChanged, &m_model, hear);
    QObject::connect(&m_model, &AppModel::busyChanged, &m_model, hear);
    for (int i = 0; i < 2; ++i) {
        m_model.setPhase(Phase::countdown(3));
        m_model.setAlert(QStringLiteral("text"));
        m_model.setPlayhead(2);
        m_model.setBusy(QStringLiteral("text"));
    }
    EXPECT_EQ(heard, 4);
}

TEST_F(AppModelTest, thePlayheadIsNeverBeforeTheStart)
{
    m_model.setPlayhead(12.3);
    EXPECT_EQ(m_model.playhead(), 12.3);
    m_model.setPlayhead(-3);
    EXPECT_EQ(m_model.playhead(), 0);
    m_model.setPlayhead(12.3);
    m_model.setPlayhead(std::nan(""));
    EXPECT_EQ(m_model.playhead(), 0);
}

TEST_F(AppModelTest, theVideoIsNamedAfterTheTitleOrTheProject)
{
    m_model.open(writeProject("one"));
    EXPECT_EQ(m_model.suggestedVideo().toLocalFile().toStdString(), m_folder / "Videos/one.mp4");
    m_model.edit(Rebuild::No, [](Project& project) { project.youtube.title = "My/Video 50%"; });
    EXPECT_EQ(m_model.suggestedVideo().toLocalFile().toStdString(), m_folder / "Videos/My-Video 50%.mp4");
}

TEST_F(AppModelTest, aTypedNameBecomesAVideoOfTheFolder)
{
    const QUrl folder = QUrl::fromLocalFile(QString::fromStdString(m_folder / "50% #1"));
    const auto typed = [&](const char* name) {
        return m_model.videoIn(folder, QString::fromUtf8(name)).toLocalFile().toStdString();
    };
    EXPECT_EQ(typed("one"), m_folder / "50% #1/one.mp4");
    EXPECT_EQ(typed(" My 100% video? v1.2 "), m_folder / "50% #1/My 100% video? v1.2.mp4");
    EXPECT_EQ(typed("one.MP4"), m_folder / "50% #1/one.mp4") << "the ending is not added twice";
    for (const char* name : { "", " ", ".mp4", "a/b", "../one.mp4", "/" })
        EXPECT_THAT(typed(name), IsEmpty()) << name;
}

TEST_F(AppModelTest, aNameIsTakenByWhateverHasIt)
{
    const QUrl video = m_model.videoIn(QUrl::fromLocalFile(QString::fromStdString(m_folder.path())), QStringLiteral("100% é"));
    const fs::path file = m_folder / "100% é.mp4";
    EXPECT_FALSE(m_model.isTaken(video));
    std::ofstream(file) << "a movie";
    EXPECT_TRUE(m_model.isTaken(video));
    fs::remove(file);
    fs::create_symlink("nowhere", file);
    EXPECT_TRUE(m_model.isTaken(video)) << "a link to nothing would be replaced as well";
}

TEST_F(AppModelTest, aFailedExportSaysWhyAndLeavesNothing)
{
    m_model.open(writeProject("one"));
    m_model.exportTo(m_folder / "out.mp4");
    EXPECT_EQ(m_model.busy(), QStringLiteral("Exporting…"));
    EXPECT_EQ(m_model.exportProgress(), 0);
    ASSERT_TRUE(test::pumpUntil([&] { return !m_model.busy(); }));
    EXPECT_THAT(alert(), StartsWith("Export failed: "));
    EXPECT_EQ(m_model.exportProgress(), std::nullopt);
    EXPECT_FALSE(fs::exists(m_folder / "out.mp4"));
    EXPECT_THAT(m_revealed, IsEmpty());
}

} // namespace vantry
