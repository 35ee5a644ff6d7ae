#include "capture/HotKeys.h"
#include "model/FieldBinding.h"
#include "model/ModelTest.h"
#include "support/XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace vantry {

using test::pumpUntil;
using testing::ElementsAre;
using testing::StartsWith;

class EditingTest : public test::ModelTest {
protected:
    /// Opens a project of 40 seconds for editing.
    void open(const std::vector<LayoutEvent>& layouts)
    {
        const auto folder = writeProject("one", 40);
        Project project = loadProject(folder);
        project.layouts = layouts;
        saveProject(project, folder);
        m_model.open(folder);
    }

    void press(HotKey key) { m_model.hotkey(static_cast<std::uint32_t>(key)); }
    std::vector<LayoutEvent> saved() const { return loadProject(*m_model.folder()).layouts; }

    static constexpr LayoutEvent bubbleRight{ 0, Layout::bubble, Corner::bottomRight };
};

TEST_F(EditingTest, aLayoutInSetupIsOneOfTheSettings)
{
    m_model.settings()->setSetupCorner(Corner::bottomLeft);
    int heard = 0;
    QObject::connect(&m_model, &AppModel::liveLayoutChanged, &m_model, [&] { ++heard; });
    press(HotKey::LayoutScreen);
    press(HotKey::NextCorner);
    EXPECT_EQ(m_model.settings()->setupLayout(), Layout::screen);
    EXPECT_EQ(m_model.settings()->setupCorner(), Corner::topLeft);
    EXPECT_EQ(m_model.liveLayout(), (LayoutEvent{ 0, Layout::screen, Corner::topLeft }));
    EXPECT_EQ(heard, 2);
    EXPECT_EQ(m_model.folder(), std::nullopt);
}

TEST_F(EditingTest, aLayoutWhileEditingBeginsAtThePlayhead)
{
    open({ bubbleRight, { 20, Layout::camera, Corner::topRight } });
    const int revision = m_model.revision();
    m_model.setPlayhead(12);
    m_model.setLayout(std::nullopt, Corner::topLeft);
    EXPECT_THAT(saved(),
        ElementsAre(
            bubbleRight, LayoutEvent{ 12, Layout::bubble, Corner::topLeft }, LayoutEvent{ 20, Layout::camera, Corner::topRight }));
    EXPECT_EQ(m_model.revision(), revision + 1);
    EXPECT_EQ(m_model.liveLayout().layout, Layout::camera) << "the one at the end";

    press(HotKey::LayoutBubble);
    EXPECT_THAT(saved(), testing::SizeIs(3)) << "it was that already";
    EXPECT_EQ(m_model.revision(), revision + 2);
    EXPECT_EQ(m_model.settings()->setupLayout(), Layout::camera);
}

TEST_F(EditingTest, aLayoutWhileCountingOrSavingIsTheEndsAndRebuildsNothing)
{
    open({ bubbleRight });
    const int revision = m_model.revision();
    m_model.setPlayhead(12);
    m_model.setPhase(Phase::countdown(2));
    press(HotKey::LayoutScreen);
    EXPECT_THAT(saved(), ElementsAre(bubbleRight, LayoutEvent{ 40, Layout::screen, Corner::bottomRight }));

    // A clip of five seconds is being saved: how it looks is not changed any more.
    m_model.setLiveTime(45);
    m_model.setPhase(Phase::saving());
    press(HotKey::LayoutCamera);
    EXPECT_EQ(saved().back(), (LayoutEvent{ 45, Layout::camera, Corner::bottomRight }));
    EXPECT_EQ(m_model.revision(), revision);
}

TEST_F(EditingTest, theBubbleGoesRoundClockwise)
{
    open({ { 0, Layout::bubble, Corner::topLeft } });
    std::vector<Corner> corners;
    for (int i = 0; i < 4; ++i) {
        press(HotKey::NextCorner);
        corners.push_back(m_model.liveLayout().corner);
    }
    EXPECT_THAT(corners, ElementsAre(Corner::topRight, Corner::bottomRight, Corner::bottomLeft, Corner::topLeft));
}

TEST_F(EditingTest, keysOfNoMeaningDoNothing)
{
    open({ bubbleRight });
    const int revision = m_model.revision();
    for (const std::uint32_t id : { 0u, 7u, 4'000'000'000u })
        m_model.hotkey(id);
    press(HotKey::GoBack);
    EXPECT_EQ(m_model.phase(), Phase::editing());
    EXPECT_EQ(m_model.revision(), revision);
    EXPECT_THAT(saved(), ElementsAre(bubbleRight));
}

TEST_F(EditingTest, aLayoutThatCannotBeSavedStaysInMemory)
{
    open({ bubbleRight });
    std::filesystem::remove_all(*m_model.folder());
    press(HotKey::LayoutScreen);
    EXPECT_EQ(m_model.liveLayout().layout, Layout::screen);
    EXPECT_THAT(alert(), StartsWith("Could not save the project: "));
}

TEST_F(EditingTest, keysStartCancelAndStopARecording)
{
    const test::XServer screen(320, 240);
    const auto reaches = [&](Phase phase) { return pumpUntil([&] { return m_model.phase() == phase; }); };
    press(HotKey::StartOrStop);
    ASSERT_TRUE(reaches(Phase::countdown(2)));
    press(HotKey::StartOrStop);
    ASSERT_TRUE(reaches(Phase::setup()));

    press(HotKey::StartOrStop);
    ASSERT_TRUE(reaches(Phase::recording())) << alert();
    ASSERT_TRUE(pumpUntil([&] { return m_model.liveTime() >= 0.5; }));
    const int revision = m_model.revision();
    press(HotKey::LayoutScreen);
    EXPECT_EQ(saved().back().layout, Layout::screen);
    EXPECT_NEAR(saved().back().time, m_model.liveTime(), 0.3) << "the clock that is shown goes in quarters";
    EXPECT_GE(saved().back().time, m_model.liveTime());
    EXPECT_EQ(m_model.revision(), revision);
    press(HotKey::GoBack);
    ASSERT_TRUE(reaches(Phase::editing()));
    EXPECT_EQ(m_model.pendingSeek(), 0);
    EXPECT_EQ(saved().size(), 2);
}

TEST_F(EditingTest, aBindingReadsAndWritesAField)
{
    open({ bubbleRight });
    const int revision = m_model.revision();
    const std::unique_ptr<FieldBinding> name(m_model.binding(ProjectField::Name, false));
    const std::unique_ptr<FieldBinding> size(m_model.binding(ProjectField::BubbleSize, true));
    int heard = 0;
    QObject::connect(name.get(), &FieldBinding::valueChanged, &m_model, [&] { ++heard; });
    EXPECT_EQ(name->value(), QStringLiteral("one"));

    name->setValue(QStringLiteral("Zwölf"));
    EXPECT_EQ(name->value(), QStringLiteral("Zwölf"));
    EXPECT_EQ(loadProject(*m_model.folder()).name, "Zwölf");
    EXPECT_EQ(m_model.revision(), revision);
    size->setValue(0.34);
    EXPECT_EQ(loadProject(*m_model.folder()).bubbleSize, 0.34);
    EXPECT_EQ(m_model.revision(), revision + 1);
    size->setValue(std::nan(""));
    size->setValue(QStringLiteral("wide"));
    EXPECT_EQ(size->value(), 0.34);
    EXPECT_EQ(heard, 1) << "of its own field only";

    m_model.newRecording();
    EXPECT_EQ(name->value(), QString());
    EXPECT_EQ(size->value(), 0.0);
}

TEST_F(EditingTest, anOverlaysBindingFollowsItById)
{
    open({ bubbleRight });
    m_model.edit(Rebuild::No, [](Project& project) { project.overlays = { { .start = 1 }, { .start = 2, .x = 0.2 } }; });
    const Uuid id = m_model.project()->overlays[1].id;
    const int revision = m_model.revision();
    const std::unique_ptr<FieldBinding> x(m_model.overlayBinding(QString::fromStdString(id.text()), OverlayField::X));
    const std::unique_ptr<FieldBinding> none(m_model.overlayBinding(QStringLiteral("no id"), OverlayField::Width));
    x->setValue(0.7);
    EXPECT_EQ(x->value(), 0.7);
    EXPECT_EQ(loadProject(*m_model.folder()).overlays[1].x, 0.7);
    EXPECT_EQ(m_model.revision(), revision + 1);

    m_model.edit(Rebuild::No, [](Project& project) { project.overlays.pop_back(); });
    EXPECT_EQ(x->value(), 0.0);
    x->setValue(0.9);
    none->setValue(0.9);
    EXPECT_EQ(m_model.project()->overlays[0].x, 0.5);
    EXPECT_EQ(m_model.project()->overlays[0].width, 0.5);
    EXPECT_EQ(none->value(), 0.0);
}

} // namespace vantry
