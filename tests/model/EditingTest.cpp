#include "capture/HotKeys.h"
#include "model/FieldBinding.h"
#include "model/ModelTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace vantry {

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
    std::vector<LayoutEvent> saved() { return onDisk().layouts; }

    static constexpr LayoutEvent bubbleRight{ 0, Layout::bubble, Corner::bottomRight };
};

TEST_F(EditingTest, aLayoutInSetupIsOneOfTheSettingsAndTheBubbleGoesRoundClockwise)
{
    int heard = 0;
    QObject::connect(&m_model, &AppModel::liveLayoutChanged, &m_model, [&] { ++heard; });
    press(HotKey::LayoutScreen);
    EXPECT_EQ(m_model.settings()->setupLayout(), Layout::screen);
    for (const Corner corner : { Corner::bottomLeft, Corner::topLeft, Corner::topRight, Corner::bottomRight }) {
        press(HotKey::NextCorner);
        EXPECT_EQ(m_model.settings()->setupCorner(), corner);
        EXPECT_EQ(m_model.liveLayout(), (LayoutEvent{ 0, Layout::screen, corner }));
    }
    EXPECT_EQ(heard, 5);
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

TEST_F(EditingTest, aLayoutWhileCountingIsTheEndsAndRebuildsNothing)
{
    open({ bubbleRight });
    const int revision = m_model.revision();
    m_model.setPlayhead(12);
    m_model.setPhase(Phase::countdown(2));
    press(HotKey::LayoutScreen);
    EXPECT_THAT(saved(), ElementsAre(bubbleRight, LayoutEvent{ 40, Layout::screen, Corner::bottomRight }));
    EXPECT_EQ(m_model.revision(), revision);
}

TEST_F(EditingTest, aLayoutThatCannotBeSavedStaysInMemory)
{
    open({ bubbleRight });
    std::filesystem::remove_all(*m_model.folder());
    press(HotKey::LayoutScreen);
    EXPECT_EQ(m_model.liveLayout().layout, Layout::screen);
    EXPECT_TRUE(test::pumpUntil([&] { return alert().starts_with("Could not save the project: "); }));
}

TEST_F(EditingTest, aBindingReadsAndWritesItsField)
{
    open({ bubbleRight });
    const int revision = m_model.revision();
    const std::unique_ptr<FieldBinding> name(m_model.binding(ProjectField::Name, false));
    const std::unique_ptr<FieldBinding> size(m_model.binding(ProjectField::BubbleSize, true));
    int heard = 0;
    QObject::connect(name.get(), &FieldBinding::valueChanged, &m_model, [&] { ++heard; });
    name->setValue(QStringLiteral("Zwölf"));
    EXPECT_EQ(name->value(), QStringLiteral("Zwölf"));
    EXPECT_EQ(onDisk().name, "Zwölf");
    EXPECT_EQ(m_model.revision(), revision);
    size->setValue(0.34);
    EXPECT_EQ(m_model.revision(), revision + 1);
    size->setValue(std::nan(""));
    size->setValue(QStringLiteral("wide"));
    EXPECT_EQ(onDisk().bubbleSize, 0.34);
    EXPECT_EQ(heard, 1) << "of its own field only";

    m_model.newRecording();
    EXPECT_EQ(name->value(), QString());
    name->setValue(QStringLiteral("nobody's"));
    EXPECT_FALSE(m_model.project());
}

TEST_F(EditingTest, anOverlaysBindingFollowsItById)
{
    open({ bubbleRight });
    m_model.edit(Rebuild::No, [](Project& project) { project.overlays = { { .start = 1 }, { .start = 2, .x = 0.2 } }; });
    const Uuid id = m_model.project()->overlays[1].id;
    const std::unique_ptr<FieldBinding> x(m_model.overlayBinding(QString::fromStdString(id.text()), OverlayField::X));
    const std::unique_ptr<FieldBinding> none(m_model.overlayBinding(QStringLiteral("no id"), OverlayField::X));
    x->setValue(0.7);
    EXPECT_EQ(onDisk().overlays[1].x, 0.7);
    m_model.edit(Rebuild::No, [](Project& project) { project.overlays.pop_back(); });
    EXPECT_EQ(x->value(), 0.0);
    x->setValue(0.9);
    none->setValue(0.9);
    EXPECT_EQ(m_model.project()->overlays[0].x, 0.5);
}

} // namespace vantry
