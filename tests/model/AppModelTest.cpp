#include "model/AppModel.h"
#include "model/DamageText.h"
#include "model/ModelTest.h"
#include "support/MovieProbe.h"
#include "support/TestMovie.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::StartsWith;

class AppModelTest : public test::ModelTest { };

TEST_F(AppModelTest, aProjectThatCannotBeOpenedChangesNothing)
{
    m_model.open(writeProject("one"));
    const fs::path opened = *m_model.folder();
    const int revision = m_model.revision();

    std::ofstream(writeProject("two") / "project.json") << R"({"name": "no more than a name"})";
    for (const char* name : { "missing", "two" }) {
        m_model.open(m_root / name);
        EXPECT_THAT(alert(), StartsWith("Could not open project: "));
        m_model.setAlert(std::nullopt);
    }
    EXPECT_EQ(m_model.folder(), opened);
    EXPECT_EQ(m_model.project()->name, "one");
    EXPECT_EQ(m_model.revision(), revision);
    EXPECT_EQ(m_model.phase(), Phase::editing());
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

TEST_F(AppModelTest, theVideoIsNamedAfterTheTitleTheProjectOrWhatIsTyped)
{
    m_model.open(writeProject("one"));
    EXPECT_EQ(m_model.suggestedVideo().toLocalFile().toStdString(), m_folder / "Videos/one.mp4");
    m_model.edit(Rebuild::No, [](Project& project) { project.youtube.title = "My/Video 50%"; });
    EXPECT_EQ(m_model.suggestedVideo().toLocalFile().toStdString(), m_folder / "Videos/My-Video 50%.mp4");

    const auto videoIn = [&](const char* name) {
        return m_model.videoIn(QUrl::fromLocalFile(QString::fromStdString(m_folder / "50% #1")), QString::fromUtf8(name));
    };
    const auto typed = [&](const char* name) { return videoIn(name).toLocalFile().toStdString(); };
    EXPECT_EQ(typed(" My 100% video? v1.2 "), m_folder / "50% #1/My 100% video? v1.2.mp4");
    EXPECT_EQ(typed("one.MP4"), m_folder / "50% #1/one.mp4") << "the ending is not added twice";
    for (const char* name : { "", " ", ".mp4", "a/b", "../one.mp4", "/" })
        EXPECT_THAT(typed(name), IsEmpty()) << name;

    fs::create_directory(m_folder / "50% #1");
    EXPECT_FALSE(m_model.isTaken(videoIn("é")));
    fs::create_symlink("nowhere", m_folder / "50% #1/é.mp4");
    EXPECT_TRUE(m_model.isTaken(videoIn("é"))) << "a link to nothing would be replaced as well";
}

TEST_F(AppModelTest, anExportOfADamagedClipIsDoneAndTellsWhatIsMissingWhere)
{
    const auto folder = writeProject("one", 2);
    test::writeTestMovie(folder / "clip-1.mov", { .duration = 2, .audio = true });
    std::filesystem::copy(folder / "clip-1.mov", folder / "clip-2.mov");
    test::damagePackets(folder / "clip-2.mov", "a:0", 0.5, 0.6);
    m_model.open(folder);
    m_model.edit(Rebuild::No, [](Project& project) {
        project.clips.push_back(project.clips.front());
        project.clips.back().file = "clip-2.mov";
    });
    m_model.settings()->setExportHeight(720);
    const auto exported = [this] {
        m_model.exportTo(m_folder / "out.mp4");
        return test::pumpUntil([&] { return !m_model.busy(); });
    };
    ASSERT_TRUE(exported());
    EXPECT_THAT(alert(), IsEmpty());
    EXPECT_TRUE(std::filesystem::exists(m_folder / "out.mp4"));
    EXPECT_EQ(m_model.status(), u"Parts of the recording are damaged. The video has no sound at 0:02 (clip-2.mov)");

    m_model.edit(Rebuild::No, [](Project& project) { project.clips.pop_back(); });
    ASSERT_TRUE(exported());
    EXPECT_TRUE(m_model.status()->startsWith(u"Exported to "));
}

TEST(DamageText, namesTheFirstPlacesAndCountsTheOthers)
{
    using namespace std::chrono_literals;
    std::vector<Damage> damage{ { "a.mov", Damage::Of::Pictures, { 59s, 61s } } };
    EXPECT_EQ(damageText(damage), u"Parts of the recording are damaged. The video has no pictures at 0:59–1:01 (a.mov)");
    damage.insert(damage.end(), 100, { "b.mov", Damage::Of::Sound, { 70s, 70s } });
    EXPECT_TRUE(damageText(damage).endsWith(u"no sound at 1:10 (b.mov), and 97 more")) << damageText(damage).toStdString();
    EXPECT_TRUE(damageText({}).isEmpty());
}

TEST_F(AppModelTest, aFailedExportSaysWhyAndLeavesNothing)
{
    m_model.open(writeProject("one"));
    m_model.exportTo(m_folder / "out.mp4");
    ASSERT_TRUE(test::pumpUntil([&] { return !m_model.busy(); }));
    EXPECT_THAT(alert(), StartsWith("Export failed: "));
    EXPECT_EQ(m_model.exportProgress(), std::nullopt);
    EXPECT_FALSE(fs::exists(m_folder / "out.mp4"));
    EXPECT_THAT(m_revealed, IsEmpty());
}

} // namespace vantry
