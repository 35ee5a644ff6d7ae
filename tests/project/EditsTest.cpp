#include "project/Edits.h"

#include "project/SampleProject.h"
#include "project/Timeline.h"

#include <gmock/gmock.h>

#include <limits>

namespace vantry {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<double> keepsAfterCut(double at)
{
    auto project = projectOfKeeps({ 10, 5, 7 });
    cut(project, at);
    std::vector<double> keeps;
    for (const auto& clip : project.clips)
        keeps.push_back(clip.keep);
    return keeps;
}

const auto camera = [](double time) { return LayoutEvent{ time, Layout::camera }; };
const auto bubble = [](double time) { return LayoutEvent{ time, Layout::bubble }; };
const auto screen = [](double time) { return LayoutEvent{ time, Layout::screen }; };

std::vector<LayoutEvent> changed(std::vector<LayoutEvent> layouts, const LayoutEvent& event)
{
    Project project{ .layouts = std::move(layouts) };
    setLayout(project, event.layout, event.corner, event.time);
    return project.layouts;
}

constexpr auto notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(Cut, shortensAndDropsClips)
{
    EXPECT_THAT(keepsAfterCut(12), ElementsAre(10, 2));
    EXPECT_THAT(keepsAfterCut(10), ElementsAre(10));
    EXPECT_THAT(keepsAfterCut(10.03), ElementsAre(10));
    EXPECT_THAT(keepsAfterCut(0), IsEmpty());
    EXPECT_THAT(keepsAfterCut(notANumber), ElementsAre(10, 5, 7));
}

TEST(Cut, countsADroppedShortClip)
{
    auto project = projectOfKeeps({ 10, 0.04, 7 });
    cut(project, 12);
    ASSERT_EQ(project.clips.size(), 2u);
    EXPECT_NEAR(project.clips[1].keep, 1.96, 1e-9);
}

TEST(Cut, endsOverlaysAtTheCut)
{
    Project project{ .overlays = { overlayAt(12, 1), overlayAt(8, 5), overlayAt(10, 1), overlayAt(1, 2) } };
    const auto crossing = project.overlays[1].id;
    cut(project, 10);
    ASSERT_EQ(project.overlays.size(), 2u);
    EXPECT_EQ(project.overlays[0].id, crossing);
    EXPECT_EQ(project.overlays[0].duration, 2);
    EXPECT_EQ(project.overlays[1].duration, 2);
}

TEST(Cut, keepsTheLayoutAtTheCut)
{
    Project project{ .layouts = { camera(0), bubble(10), screen(20) } };
    cut(project, 10);
    EXPECT_THAT(project.layouts, ElementsAre(camera(0), bubble(10)));
    cut(project, -1);
    EXPECT_THAT(project.layouts, ElementsAre(camera(0)));
}

TEST(SetLayout, replacesAChangeCloseByAndDropsWhatChangesNothing)
{
    EXPECT_THAT(changed({ camera(0) }, screen(0.03)), ElementsAre(screen(0)));
    EXPECT_THAT(changed({ camera(0), bubble(10) }, bubble(10.04)), ElementsAre(camera(0), bubble(10.04)));
    EXPECT_THAT(changed({ camera(0), bubble(10) }, screen(9.97)), ElementsAre(camera(0), screen(9.97)));
    EXPECT_THAT(changed({ camera(0), bubble(10) }, screen(10.06)), ElementsAre(camera(0), bubble(10), screen(10.06)));
    EXPECT_THAT(changed({ camera(0), bubble(10) }, camera(10)), ElementsAre(camera(0)));
    EXPECT_THAT(changed({ camera(0), bubble(10) }, bubble(5)), ElementsAre(camera(0), bubble(5)));
}

TEST(SetLayout, putsAnUnsortedListInOrderAndFillsAnEmptyOne)
{
    EXPECT_THAT(changed({ camera(20), bubble(10) }, screen(15)), ElementsAre(bubble(10), screen(15), camera(20)));
    EXPECT_THAT(changed({}, screen(15)), ElementsAre(screen(15)));
    EXPECT_THAT(changed({ camera(0) }, screen(notANumber)), ElementsAre(camera(0)));
}

} // namespace vantry
