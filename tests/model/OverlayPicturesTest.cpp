#include "model/OverlayPictures.h"
#include "model/ModelTest.h"
#include "support/MovieProbe.h"
#include "support/OverlayHelperProcess.h"
#include "support/TestMovie.h"

#include <QCoroTask>
#include <gmock/gmock.h>

#include <csignal>

namespace vantry {

using testing::IsEmpty;

namespace {

Overlay covering(double from, double to, const std::string& html)
{
    return { .start = from, .duration = to - from, .kind = OverlayKind::text, .html = html, .width = 1 };
}

class OverlayPicturesTest : public test::ModelTest {
protected:
    OverlayImages images() { return QCoro::waitFor(m_model.overlayImages()); }
};

} // namespace

TEST_F(OverlayPicturesTest, everyOverlayHasItsBitmapAndWhoeverCancelsDoesNotWaitForAHelperThatHangs)
{
    EXPECT_THAT(images(), IsEmpty());
    m_model.open(writeProject("one"));
    const auto good = Overlay::make(OverlayKind::text, "a", 1);
    const auto tooLarge = covering(0, 1, std::string(2'000'000, 'a'));
    m_model.edit(Rebuild::Yes, [&](Project& project) { project.overlays = { tooLarge, good }; });
    const auto found = images();
    EXPECT_EQ(found.size(), 1);
    EXPECT_EQ(found.at(good.id).width(), 2688);

    m_model.edit(Rebuild::Yes, [&](Project& project) { project.overlays = { Overlay::make(OverlayKind::text, "b", 1) }; });
    const auto helper = test::overlayHelperProcess();
    kill(helper, SIGSTOP);
    std::stop_source cancel;
    QTimer::singleShot(0, &m_model, [&] { cancel.request_stop(); });
    EXPECT_THAT(QCoro::waitFor(m_model.overlayImages(cancel.get_token())), IsEmpty());
    EXPECT_EQ(test::overlayHelperProcess(), helper) << "it was waited for until it was given up";
}

TEST_F(OverlayPicturesTest, bitmapsForWhichThereIsNoRoomAreLeftOutAndTheUserIsTold)
{
    OverlayPictures pictures(m_model, 1'000'000);
    const auto row = [](const std::string& colour) { // 3840 by 112 pixels
        return covering(0, 1, "<style>body{padding:0!important}</style><div style='height:56px;background:" + colour + "'></div>");
    };
    const std::vector overlays{ row("red"), row("blue"), row("green"), row("red") };
    const auto imagesOf = [&](std::vector<Overlay> wanted) { return QCoro::waitFor(pictures.of(std::move(wanted), {})); };
    for (int i = 0; i < 2; ++i) {
        const auto images = imagesOf(overlays);
        EXPECT_EQ(images.size(), 3);
        EXPECT_FALSE(images.contains(overlays[2].id));
        EXPECT_EQ(m_model.status(), u"Left out 1 of 4 overlays: together they would need too much memory");
    }
    EXPECT_EQ(imagesOf({ overlays[1], overlays[2] }).size(), 2);
    EXPECT_EQ(m_model.status(), std::nullopt);

    ASSERT_EQ(imagesOf(overlays).size(), 3);
    m_model.open(writeProject("other"));
    EXPECT_EQ(m_model.status(), std::nullopt);
}

TEST_F(OverlayPicturesTest, anExportShowsThem)
{
    test::writeTestMovie(writeProject("one", 2) / "clip-1.mov", { .duration = 2 });
    m_model.open(m_root / "one");
    m_model.settings()->setExportHeight(720);
    m_model.edit(Rebuild::Yes, [](Project& project) {
        project.layouts = { { .layout = Layout::screen } };
        project.overlays = { covering(0.5, 1.5, "<div style='background:white;height:900px'></div>") };
    });
    m_model.exportTo(m_folder / "out.mp4");
    ASSERT_TRUE(test::pumpUntil([&] { return !m_model.busy(); }, std::chrono::seconds(60)));
    ASSERT_THAT(alert(), IsEmpty());
    for (const auto& frame : test::probeFrames(m_folder / "out.mp4", "v:0")) {
        const bool isShown = frame.time > 0.8 && frame.time < 1.15;
        const bool isFading = !isShown && frame.time > 0.45 && frame.time < 1.55;
        EXPECT_TRUE(isFading || isShown == (frame.luma > test::flashLuma)) << frame.time;
    }
}

} // namespace vantry
