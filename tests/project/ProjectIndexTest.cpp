#include "project/ProjectIndex.h"

#include "project/SampleProject.h"
#include "project/Timeline.h"

#include <gmock/gmock.h>

#include <random>

namespace vantry {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::size_t> visibleByWalking(const Project& project, double time)
{
    std::vector<std::size_t> visible;
    for (std::size_t position = 0; position < project.overlays.size(); ++position) {
        const auto& overlay = project.overlays[position];
        if (overlay.start <= time && time < overlay.start + overlay.duration)
            visible.push_back(position);
    }
    return visible;
}

std::optional<LayoutEvent> previousByWalking(const Project& project, const LayoutEvent& event)
{
    const auto place = std::ranges::find(project.layouts, event);
    return place == project.layouts.begin() ? std::nullopt : std::optional(*std::prev(place));
}

/// Times on a coarse grid, so that many are equal, in no order.
Project randomProject(unsigned seed)
{
    std::mt19937 random(seed);
    const auto pick = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
    Project project;
    for (int count = pick(1, 40); count > 0; --count) {
        project.layouts.push_back({ pick(0, 30) / 4.0, Layout(pick(0, 2)), Corner(pick(0, 3)) });
        project.overlays.push_back(overlayAt(pick(0, 30) / 4.0, pick(-1, pick(0, 30)) / 4.0));
    }
    return project;
}

} // namespace

TEST(ProjectIndex, answersAsAWalkThroughTheListsWould)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        const auto project = randomProject(seed);
        const ProjectIndex index(project);
        for (double step = -8; step < 160; ++step) {
            const double time = step / 8 - (seed % 3) * 0.75 * layoutLookupSlack;
            const auto layout = index.layoutAt(time);
            ASSERT_EQ(layout.event, layoutInForce(project, time)) << seed << " at " << time;
            ASSERT_EQ(layout.previous, previousByWalking(project, layout.event)) << seed << " at " << time;
            ASSERT_EQ(index.visibleOverlays(time), visibleByWalking(project, time)) << seed << " at " << time;
        }
    }
}

TEST(ProjectIndex, findsTheClipThatPlays)
{
    const ProjectIndex index(projectOfKeeps({ 10, 0, 5 }));
    EXPECT_EQ(index.clipAt(0)->clip, 0u);
    EXPECT_EQ(index.clipAt(10)->clip, 2u);
    EXPECT_EQ(index.clipAt(12.5)->time, 2.5);
    EXPECT_FALSE(index.clipAt(15));
    EXPECT_FALSE(index.clipAt(-0.1));
}

TEST(ProjectIndex, worksForListsThatAreEmptyOrMeaningless)
{
    constexpr auto notANumber = std::numeric_limits<double>::quiet_NaN();
    const ProjectIndex empty{ Project() };
    EXPECT_EQ(empty.layoutAt(1).event, layoutOfNoEvents);
    EXPECT_THAT(empty.visibleOverlays(1), IsEmpty());

    const ProjectIndex odd(Project{ .layouts = { { 0, Layout::screen }, { notANumber, Layout::camera } },
        .overlays = { overlayAt(notANumber, 1), overlayAt(0, 1e308), overlayAt(1, notANumber), overlayAt(0, 2) } });
    EXPECT_EQ(odd.layoutAt(1).event.layout, Layout::screen);
    EXPECT_THAT(odd.visibleOverlays(1), ElementsAre(1, 3));
    EXPECT_THAT(odd.visibleOverlays(notANumber), IsEmpty());
}

} // namespace vantry
