#include "render/HTMLRenderer.h"
#include "support/OverlayHelperProcess.h"
#include "support/PumpUntil.h"
#include "support/SilentServer.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstring>
#include <fstream>
#include <sys/wait.h>
#include <thread>

namespace vantry {

using namespace std::chrono_literals;

namespace {

struct Pixel {
    int blue, green, red, alpha;
    bool operator==(const Pixel&) const = default;
};

constexpr Pixel clear{ 0, 0, 0, 0 };
constexpr Pixel white{ 255, 255, 255, 255 };
constexpr Pixel red{ 0, 0, 255, 255 };

Pixel at(const Bitmap& bitmap, int x, int y)
{
    const auto* bytes = bitmap.row(y) + 4 * x;
    return { bytes[0], bytes[1], bytes[2], bytes[3] };
}

bool operator==(const Bitmap& a, const Bitmap& b)
{
    return a.width() == b.width() && a.height() == b.height()
        && std::memcmp(a.row(0), b.row(0), static_cast<std::size_t>(a.width()) * a.height() * 4) == 0;
}

Overlay fragment(std::string html, double width = 0.42)
{
    return { .html = std::move(html), .width = width };
}

/// A row of characters that stand 50 CSS pixels apart.
Overlay row(const std::vector<std::string>& characters, const std::string& font)
{
    std::string html = "<style>body{padding:0!important}i{float:left;width:50px;height:50px;font:30px/50px " + font + "}</style>";
    for (const auto& character : characters)
        html += "<i>" + character + "</i>";
    return fragment(html, 1);
}

enum class Ink { None, Black, Coloured };

/// What the character at this place is made of: text is black, of an emoji nothing is.
Ink inkAt(const Bitmap& bitmap, int place)
{
    Ink ink = Ink::None;
    for (int y = 0; y < bitmap.height(); ++y)
        for (int x = 100 * place; x < 100 * (place + 1); ++x) {
            const auto pixel = at(bitmap, x, y);
            if (pixel == Pixel{ 0, 0, 0, 255 })
                return Ink::Black;
            if (pixel.alpha == 255)
                ink = Ink::Coloured;
        }
    return ink;
}

/// The same to look at, but with a render key of its own.
Overlay numbered(Overlay overlay, int number)
{
    overlay.html += "<!--" + std::to_string(number) + "-->";
    return overlay;
}

class HTMLRendererTest : public test::EventLoopTest {
protected:
    /// Waits as the application does, with its event loop running.
    static HTMLRenderer::Image imageOf(HTMLRenderer& renderer, const Overlay& overlay)
    {
        const auto image = renderer.image(overlay);
        EXPECT_TRUE(test::pumpUntil([&] { return image.isFinished(); }, 60s));
        return image.result();
    }
    HTMLRenderer::Image imageOf(const Overlay& overlay) { return imageOf(m_renderer, overlay); }

    /// What has to be a bitmap.
    Bitmap bitmapOf(const Overlay& overlay) { return imageOf(overlay).value(); }

    HTMLRenderer m_renderer;
};

} // namespace

TEST_F(HTMLRendererTest, everyKindIsShownWholeOnATransparentGround)
{
    for (const auto& [kind, width] :
        { std::pair(OverlayKind::text, 2688), { OverlayKind::lowerThird, 2381 }, { OverlayKind::bubble, 1613 } }) {
        const auto image = bitmapOf(Overlay::make(kind, "Sharp text", 0));
        EXPECT_EQ(image.width(), width);
        EXPECT_EQ(at(image, 0, 0), clear);
        EXPECT_EQ(at(image, width - 1, image.height() - 1), clear);
        EXPECT_EQ(at(image, width - 1, image.height() / 2), clear);
        if (kind != OverlayKind::bubble)
            continue;
        // The page's margin, the bubble's own, a line, and the bubble's own again, in CSS pixels. Below it is its tail.
        const int below = static_cast<int>(2 * (28 + 24 + 46 * 1.2 + 24)) + 30;
        EXPECT_EQ(at(image, width / 2, below), white);
        EXPECT_NE(at(image, width / 2 - 40, below), white);
    }
}

TEST_F(HTMLRendererTest, emojiAreColouredAndTextIsNotInEveryFont)
{
    const std::vector<std::string> emoji{ "❤️", "⚠️", "☀️", "♥️", "⬜", "▶️", "◀️", "⬆️", "↗️",
        "↖️", "↘️", "↙️", "↔️", "↕️", "↩️", "↪️", "⏏️", "Ⓜ️", "‼️", "⁉️", "▪️",
        "✔️", "✏️", "❤", "⚠", "👍🏽", "❤️‍🔥", "&#x21A9;&#xFE0F;" };
    const std::vector<std::string> text{ "a", "1", "#", "™", "™️", "©", "©️", "®", "®️", "→", "←", "↔", "▶", "↗", "‼",
        "✓", "❤︎" };
    for (const std::string font : { "-apple-system,system-ui", "system-ui", "Arial", "sans-serif", "serif", "monospace" }) {
        const auto colours = bitmapOf(row(emoji, font)), letters = bitmapOf(row(text, font));
        for (std::size_t i = 0; i < emoji.size(); ++i)
            EXPECT_EQ(inkAt(colours, static_cast<int>(i)), Ink::Coloured) << emoji[i] << " in " << font;
        for (std::size_t i = 0; i < text.size(); ++i)
            EXPECT_EQ(inkAt(letters, static_cast<int>(i)), Ink::Black) << text[i] << " in " << font;
    }
    EXPECT_EQ(inkAt(bitmapOf(row({ R"(<style>i::before{content:"\25B6\FE0F"}</style>)" }, "system-ui")), 0), Ink::Coloured);
}

TEST_F(HTMLRendererTest, theBitmapHasTheContentsSizeToThePixel)
{
    const auto image = bitmapOf(fragment(R"(<div style="margin:-28px;height:150.6px;background:#f00"></div>)"));
    EXPECT_EQ(image.width(), 1613) << "806.4 CSS pixels";
    EXPECT_EQ(at(image, 1612, 100), red);
    EXPECT_EQ(bitmapOf(fragment(R"(<div style="height:94px"></div>)")).height(), 300);
    const auto empty = bitmapOf(fragment("<style>body{padding:0!important}</style>", 0.01));
    EXPECT_EQ(empty.width(), 38);
    EXPECT_EQ(empty.height(), 2);
    EXPECT_TRUE(bitmapOf(fragment("%1 %2 %3 ${1} \\ ' \" `"))
        == bitmapOf(fragment("&#37;1 &#37;2 &#37;3 &#36;{1} &#92; &apos; &quot; &#96;")));
    EXPECT_FALSE(imageOf(fragment("too narrow", 0)));
    EXPECT_FALSE(imageOf(fragment("too wide", 1e300)));
}

TEST_F(HTMLRendererTest, oneFragmentOfOneWidthIsRenderedOnce)
{
    auto overlay = Overlay::make(OverlayKind::bubble, "one", 0);
    const auto first = m_renderer.image(overlay);
    const auto second = m_renderer.image(Overlay::make(OverlayKind::bubble, "one", 7));
    EXPECT_EQ(first.result()->row(0), second.result()->row(0));
    overlay.width = 0.43;
    EXPECT_EQ(imageOf(overlay)->width(), 1651);
}

TEST_F(HTMLRendererTest, underLoadPicturesStayTheSameAndNobodyWaitsForThem)
{
    const auto overlay = Overlay::make(OverlayKind::text, "The same 🎉 each time", 0);
    const auto moving = fragment("<style>@keyframes a{from{width:10px}to{width:300px}}div{animation:a 1s infinite alternate;"
                                 "height:50px;background:red}</style><div></div>");
    const auto expected = bitmapOf(overlay);
    const auto still = bitmapOf(moving);
    std::vector<std::jthread> load;
    for (unsigned core = 0; core < std::thread::hardware_concurrency(); ++core)
        load.emplace_back([](const std::stop_token& stop) {
            while (!stop.stop_requested())
                std::this_thread::yield();
        });
    std::vector<QFuture<HTMLRenderer::Image>> images;
    for (int i = 0; i < 20; ++i)
        images.push_back(m_renderer.image(numbered(i % 4 ? overlay : moving, i)));
    EXPECT_FALSE(images.back().isFinished());
    ASSERT_TRUE(test::pumpUntil([&] { return images.back().isFinished(); }));
    for (std::size_t i = 0; i < images.size(); ++i) {
        EXPECT_TRUE(images[i].result().value() == (i % 4 ? expected : still)) << i;
    }
}

TEST_F(HTMLRendererTest, noStyleOfAFragmentReachesBeyondIt)
{
    const std::string box = "<div style='height:40px;background:red'></div>";
    const int height = 2 * (28 + 40 + 28);
    for (const auto& [style, expected] : std::vector<std::pair<std::string, int>>{
             { "html{zoom:2}", 2 * height },
             { "*{transform:translateY(5px)!important}", 0 },
             { "html{filter:invert(1)}*{opacity:.9!important}", height },
             { "html,div{overflow:scroll!important}", height },
             { "*{visibility:hidden!important}", height },
             { ":root{color-scheme:dark}", height },
             { "*{zoom:1.5}", 0 },
             { "html{display:none}", 2 },
             { "*{display:none!important}", 2 },
             { "html{content-visibility:hidden}", 2 },
             { "*{contain:strict!important}", 2 },
         }) {
        SCOPED_TRACE(style);
        const auto overlay = fragment("<meta name=color-scheme content=dark><style>" + style + "</style>" + box);
        const auto image = bitmapOf(overlay);
        EXPECT_TRUE(expected == 0 || image.height() == expected) << image.height();
        EXPECT_EQ(at(image, 0, image.height() - 1), clear);
        EXPECT_TRUE(bitmapOf(numbered(overlay, 1)) == image);
    }
}

TEST_F(HTMLRendererTest, whatMovesByItselfStandsStill)
{
    const std::string high = "<div style='height:900px'></div>";
    for (const std::string& moving : std::vector<std::string>{
             "<progress></progress>",
             "<marquee>a</marquee><marquee behavior=alternate>b</marquee>",
             high + "<input autofocus value=a><textarea autofocus></textarea>",
             "<svg><rect width=9 height=9><animate attributeName=x to=90 dur=1s repeatCount=indefinite /></rect></svg>",
             "<iframe srcdoc='a'></iframe><iframe sandbox srcdoc='b'></iframe>",
         }) {
        const auto image = bitmapOf(fragment(moving));
        for (int i = 0; i < 4; ++i)
            EXPECT_TRUE(bitmapOf(numbered(fragment(moving), i)) == image) << moving;
    }
    EXPECT_TRUE(bitmapOf(fragment(high + "<input autofocus>")) == bitmapOf(fragment(high + "<input>")));
}

TEST_F(HTMLRendererTest, aFragmentReachesNothingAndRunsNothing)
{
    const test::SilentServer server;
    const std::string url = server.url() + "/";
    // Each of them shows a red box if it is what it should not be.
    for (const std::string& hostile : std::vector<std::string>{
             "<script>document.body.style.background='red'</script><img src=x onerror=\"document.body.style.background='red'\">",
             "<meta http-equiv=refresh content='0;url=" + url + "'><meta http-equiv=refresh content='0;url=data:text/html,moved'>",
             "<img src='" + url + "a.png'><iframe src='" + url + "'></iframe><link rel=stylesheet href='" + url + "a.css'>",
             "<style>@import '" + url + "b.css';div{background:url(" + url + "c.png)}@font-face{font-family:f;src:url(" + url
                 + "f)}div{font-family:f}</style><div>a</div>",
             "<video autoplay src='" + url + "v'></video><object data='" + url + "o'></object><embed src='" + url + "e'>",
             "<link rel=preconnect href='" + url + "'><link rel=dns-prefetch href='" + url + "'><link rel=prefetch href='" + url
                 + "p'>",
             "<base href='" + url + "'><form action='" + url + "' id=f><input autofocus></form><svg><image href='" + url
                 + "s'/></svg>",
             "<iframe srcdoc='<script>top.location=1</script>'></iframe><iframe src='file:///etc/passwd'></iframe>",
             "<img src='file:///usr/share/pixmaps/debian-logo.png'><object data='file:///etc/passwd'></object>",
         }) {
        EXPECT_EQ(at(bitmapOf(fragment(hostile)), 1, 1), clear) << hostile;
    }
    EXPECT_FALSE(server.isAsked());
}

TEST_F(HTMLRendererTest, aHeavyFragmentIsGivenUpAndTheNextOneIsRendered)
{
    const auto good = Overlay::make(OverlayKind::lowerThird, "Still here", 0);
    const auto expected = bitmapOf(good);
    std::string endless = "<svg width=9 height=9><g id=a0><rect width=9 height=9 /></g>";
    for (int i = 1; i < 9; ++i) {
        endless += "<g id=a" + std::to_string(i) + ">";
        for (int j = 0; j < 20; ++j)
            endless += "<use href='#a" + std::to_string(i - 1) + "'/>";
        endless += "</g>";
    }
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<div>";
    const auto huge = "<div style='height:1e9px;width:1e9px;background:linear-gradient(red,blue);box-shadow:0 0 900px red'></div>";
    const std::string heavy =
        "<style>div{filter:blur(90px) drop-shadow(0 0 900px red);width:4000px;height:4000px;backdrop-filter:blur(50px)}"
        "</style>";
    int number = 0;
    for (const auto& hostile :
        { endless + "</svg>", deep, std::string(huge), heavy + deep.substr(0, 2000), std::string(2'000'000, 'x') }) {
        QElapsedTimer time;
        time.start();
        const auto image = imageOf(fragment(hostile));
        EXPECT_LT(time.elapsed(), 8500);
        EXPECT_TRUE(!image || image->height() <= 2 * 4096);
        EXPECT_TRUE(bitmapOf(numbered(good, ++number)) == expected) << number;
    }
}

TEST_F(HTMLRendererTest, whatTookTooLongIsNotTriedAgainButWhatAKilledHelperHadIs)
{
    HTMLRenderer renderer({ .longestRender = 1s });
    const auto isTried = [&](const Overlay& overlay) {
        const auto image = renderer.image(overlay);
        return test::pumpUntil([&] { return image.isFinished() || test::overlayHelperProcess() != 0; }) && !image.isFinished();
    };
    ASSERT_TRUE(imageOf(renderer, fragment("a")));
    kill(test::overlayHelperProcess(), SIGSTOP);
    EXPECT_FALSE(imageOf(renderer, fragment("slow")));
    EXPECT_EQ(test::overlayHelperProcess(), 0) << "it was ended";
    EXPECT_FALSE(isTried(fragment("slow")));
    EXPECT_TRUE(isTried(fragment("slow", 0.5))) << "in another width";

    ASSERT_TRUE(imageOf(renderer, fragment("b")));
    kill(test::overlayHelperProcess(), SIGSTOP);
    const auto under = renderer.image(fragment("innocent"));
    kill(test::overlayHelperProcess(), SIGKILL);
    ASSERT_TRUE(test::pumpUntil([&] { return under.isFinished(); }));
    EXPECT_TRUE(imageOf(renderer, fragment("innocent")));
}

TEST_F(HTMLRendererTest, noBitmapHasMoreThanFourTimesTheFramesPixels)
{
    const std::string high = "<div style='height:5000px;background:red'></div>";
    for (const double width : { 0.05, 0.42, 1.0, 2.1 }) {
        const auto image = bitmapOf(fragment(high, width));
        EXPECT_EQ(image.width(), std::lround(3840 * width));
        EXPECT_LE(image.pixels(), 4 * 1920 * 1080);
        EXPECT_GE(image.height(), std::min<std::int64_t>(4 * 1920 * 1080 / image.width(), 8192) - 1) << width;
        EXPECT_EQ(at(image, image.width() / 2, image.height() - 1), red) << "the rest is cut off";
    }
}

TEST_F(HTMLRendererTest, aHelperThatFailsCostsOnePicture)
{
    HTMLRenderer renderer({ .longestRender = 3s });
    const auto good = Overlay::make(OverlayKind::bubble, "a", 0);
    int number = 0;
    const auto next = [&] { return numbered(good, ++number); };
    ASSERT_TRUE(imageOf(renderer, next()));

    kill(test::overlayHelperProcess(), SIGSTOP);
    EXPECT_FALSE(imageOf(renderer, next())) << "it hangs";
    ASSERT_TRUE(imageOf(renderer, next()));

    kill(test::overlayHelperProcess(), SIGSTOP);
    const auto under = renderer.image(next());
    kill(test::overlayHelperProcess(), SIGKILL);
    ASSERT_TRUE(test::pumpUntil([&] { return under.isFinished(); }));
    ASSERT_TRUE(imageOf(renderer, next()));

    const auto idle = test::overlayHelperProcess();
    kill(idle, SIGKILL);
    siginfo_t end{};
    waitid(P_PID, idle, &end, WEXITED | WNOWAIT);
    EXPECT_TRUE(imageOf(renderer, next())) << "it had nothing to do when it ended";
}

TEST_F(HTMLRendererTest, anotherProgramInItsPlaceGivesNothing)
{
    const test::TemporaryFolder folder;
    const auto program = folder / "nonsense";
    std::ofstream(program) << "#!/bin/sh\nprintf REDY >&0\nexec yes >&0\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    for (const std::filesystem::path& wrong : { program, std::filesystem::path("/bin/true"), folder / "nothing" }) {
        HTMLRenderer renderer({ .program = wrong });
        EXPECT_FALSE(imageOf(renderer, fragment("a"))) << wrong;
    }
}

TEST_F(HTMLRendererTest, theHelperEndsWhenIdleAndWithItsRenderer)
{
    EXPECT_EQ(test::overlayHelperProcess(), 0);
    {
        HTMLRenderer renderer({ .idle = 50ms });
        EXPECT_TRUE(imageOf(renderer, fragment("a")));
        EXPECT_NE(test::overlayHelperProcess(), 0);
        EXPECT_TRUE(test::pumpUntil([] { return test::overlayHelperProcess() == 0; }));
        EXPECT_TRUE(imageOf(renderer, fragment("b")));
        static_cast<void>(renderer.image(fragment("c")));
        static_cast<void>(renderer.image(fragment("d")));
    }
    EXPECT_EQ(test::overlayHelperProcess(), 0);
}

} // namespace vantry
