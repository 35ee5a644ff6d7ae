#include "render/HTMLRenderer.h"
#include "support/OverlayHelperProcess.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <fstream>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
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

/// A server of this machine that counts who comes.
class LocalServer {
public:
    LocalServer()
    {
        sockaddr_in address{ .sin_family = AF_INET, .sin_port = 0, .sin_addr = { htonl(INADDR_LOOPBACK) }, .sin_zero = {} };
        socklen_t size = sizeof address;
        if (bind(m_socket, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(m_socket, 50) != 0)
            throw std::runtime_error("No server");
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
        m_url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
    }
    ~LocalServer() { close(m_socket); }

    const std::string& url() const { return m_url; }
    bool wasVisited() const { return accept(m_socket, nullptr, nullptr) >= 0; }

private:
    const int m_socket = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    std::string m_url;
};

/// Keeps every core busy.
class Load {
public:
    Load()
    {
        for (unsigned core = 0; core < std::thread::hardware_concurrency(); ++core)
            m_threads.emplace_back([this](const std::stop_token& stop) {
                while (!stop.stop_requested())
                    ++m_work;
            });
    }

private:
    std::atomic<long> m_work = 0;
    std::vector<std::jthread> m_threads;
};

/// The longest time for which the event loop did not come to a timer of 5 ms, without the time in which it waited for a processor.
class LongestStall {
public:
    LongestStall()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            const double delay = processorDelay();
            m_longest = std::max(m_longest, static_cast<double>(m_since.restart()) - (delay - m_delay));
            m_delay = delay;
        });
        m_timer.setTimerType(Qt::PreciseTimer);
        m_since.start();
        m_timer.start(5);
    }
    double milliseconds() const { return m_longest; }

private:
    /// What this thread has waited for one so far, in milliseconds.
    static double processorDelay()
    {
        double running = 0, waiting = 0;
        std::ifstream("/proc/thread-self/schedstat") >> running >> waiting;
        return waiting / 1e6;
    }

    QTimer m_timer;
    QElapsedTimer m_since;
    double m_delay = processorDelay();
    double m_longest = 0;
};

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

    HTMLRenderer m_renderer;
};

} // namespace

TEST(HTMLRenderer, theKeyIsTheWidthInCssPixelsAndTheFragment)
{
    EXPECT_EQ(HTMLRenderer::renderKey(fragment("<b>", 0.42)), "806.4|<b>");
    EXPECT_EQ(HTMLRenderer::renderKey(fragment("<b>", 0.7)), "1344.0|<b>");
}

TEST_F(HTMLRendererTest, everyKindIsShownWholeOnATransparentGround)
{
    for (const auto& [kind, width] :
        { std::pair(OverlayKind::bubble, 1613), { OverlayKind::text, 2688 }, { OverlayKind::lowerThird, 2381 } }) {
        const auto image = imageOf(Overlay::make(kind, "Sharp 👍 text", 0));
        ASSERT_TRUE(image);
        EXPECT_EQ(image->width(), width);
        EXPECT_EQ(image->height() % 2, 0);
        EXPECT_EQ(at(*image, 0, 0), clear);
        EXPECT_EQ(at(*image, width - 1, image->height() - 1), clear);
        EXPECT_EQ(at(*image, width - 1, image->height() / 2), clear);
    }
}

TEST_F(HTMLRendererTest, theBubbleHasItsTailAndColouredEmoji)
{
    const auto image = imageOf(Overlay::make(OverlayKind::bubble, "👍", 0));
    ASSERT_TRUE(image);
    // The page's margin, the bubble's own, a line, and the bubble's own again, in CSS pixels; the tail is as wide as it is high
    // there.
    const int bottom = static_cast<int>(2 * (28 + 24 + 46 * 1.2 + 24));
    const int middle = image->width() / 2;
    EXPECT_EQ(at(*image, middle, bottom + 30), white);
    EXPECT_NE(at(*image, middle - 40, bottom + 30), white);
    int coloured = 0;
    for (int x = 0; x < image->width(); ++x) {
        const auto pixel = at(*image, x, bottom / 2 + 28);
        coloured += pixel.alpha == 255 && pixel.red > pixel.blue + 100;
    }
    EXPECT_GT(coloured, 10);
}

TEST_F(HTMLRendererTest, emojiAreColouredAndTextIsNotInEveryFont)
{
    const std::vector<std::string> emoji{ "❤️", "⚠️", "☀️", "♥️", "⬜", "▶️", "◀️", "⬆️", "↗️",
        "↖️", "↘️", "↙️", "↔️", "↕️", "↩️", "↪️", "⏏️", "Ⓜ️", "‼️", "⁉️", "▪️",
        "✔️", "✏️", "❤", "⚠", "👍🏽", "❤️‍🔥", "&#x21A9;&#xFE0F;" };
    const std::vector<std::string> text{ "a", "1", "#", "™", "™️", "©", "©️", "®", "®️", "→", "←", "↔", "▶", "↗", "‼",
        "✓", "❤︎" };
    for (const std::string font : { "-apple-system,system-ui", "system-ui", "Arial", "sans-serif", "serif", "monospace" }) {
        const auto colours = imageOf(row(emoji, font));
        const auto letters = imageOf(row(text, font));
        ASSERT_TRUE(colours && letters);
        for (std::size_t i = 0; i < emoji.size(); ++i)
            EXPECT_EQ(inkAt(*colours, static_cast<int>(i)), Ink::Coloured) << emoji[i] << " in " << font;
        for (std::size_t i = 0; i < text.size(); ++i)
            EXPECT_EQ(inkAt(*letters, static_cast<int>(i)), Ink::Black) << text[i] << " in " << font;
    }
    const auto escaped = imageOf(row({ R"(<style>i::before{content:"\25B6\FE0F"}</style>)" }, "system-ui"));
    ASSERT_TRUE(escaped);
    EXPECT_EQ(inkAt(*escaped, 0), Ink::Coloured);
}

TEST_F(HTMLRendererTest, theBitmapHasTheContentsSizeToThePixel)
{
    const auto image = imageOf(fragment(R"(<div style="margin:-28px;height:150.6px;background:#f00"></div>)"));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width(), 1613) << "806.4 CSS pixels";
    EXPECT_EQ(at(*image, 1612, 100), red);
    const auto high = imageOf(fragment(R"(<div style="height:94px"></div>)"));
    ASSERT_TRUE(high);
    EXPECT_EQ(high->height(), 300);
    const auto empty = imageOf(fragment("<style>body{padding:0!important}</style>", 0.01));
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->width(), 38);
    EXPECT_EQ(empty->height(), 2);
    const auto percent = imageOf(fragment("%1 %2 %3 ${1} \\ ' \" `"));
    const auto sameInWords = imageOf(fragment("&#37;1 &#37;2 &#37;3 &#36;{1} &#92; &apos; &quot; &#96;"));
    ASSERT_TRUE(percent && sameInWords);
    EXPECT_TRUE(*percent == *sameInWords);
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

TEST_F(HTMLRendererTest, underLoadPicturesStayTheSameAndTheEventLoopRuns)
{
    const auto overlay = Overlay::make(OverlayKind::text, "The same 🎉 each time", 0);
    const auto moving = fragment("<style>@keyframes a{from{width:10px}to{width:300px}}div{animation:a 1s infinite alternate;"
                                 "height:50px;background:red}</style><div></div>");
    const auto expected = imageOf(overlay);
    const auto still = imageOf(moving);
    ASSERT_TRUE(expected && still);
    const LongestStall stall;
    const Load load;
    std::vector<QFuture<HTMLRenderer::Image>> images;
    for (int i = 0; i < 20; ++i)
        images.push_back(m_renderer.image(numbered(i % 4 ? overlay : moving, i)));
    ASSERT_TRUE(test::pumpUntil([&] { return images.back().isFinished(); }, 60s));
    EXPECT_LT(stall.milliseconds(), 50);
    for (std::size_t i = 0; i < images.size(); ++i) {
        ASSERT_TRUE(images[i].result()) << i;
        EXPECT_TRUE(*images[i].result() == (i % 4 ? *expected : *still)) << i;
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
        const auto overlay = fragment("<meta name=color-scheme content=dark><style>" + style + "</style>" + box);
        const auto image = imageOf(overlay);
        ASSERT_TRUE(image) << style;
        if (expected != 0) {
            EXPECT_EQ(image->height(), expected) << style;
        }
        EXPECT_EQ(at(*image, 0, image->height() - 1), clear) << style;
        const auto again = imageOf(numbered(overlay, 1));
        ASSERT_TRUE(again) << style;
        EXPECT_TRUE(*again == *image) << style;
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
        const auto image = imageOf(fragment(moving));
        ASSERT_TRUE(image) << moving;
        for (int i = 0; i < 4; ++i) {
            const auto again = imageOf(numbered(fragment(moving), i));
            ASSERT_TRUE(again) << moving;
            EXPECT_TRUE(*again == *image) << moving;
        }
    }
    const auto focused = imageOf(fragment(high + "<input autofocus>"));
    const auto plain = imageOf(fragment(high + "<input>"));
    ASSERT_TRUE(focused && plain);
    EXPECT_TRUE(*focused == *plain);
}

TEST_F(HTMLRendererTest, aFragmentReachesNothingAndRunsNothing)
{
    const LocalServer server;
    const auto& url = server.url();
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
        const auto image = imageOf(fragment(hostile));
        ASSERT_TRUE(image) << hostile;
        EXPECT_EQ(at(*image, 1, 1), clear) << hostile;
    }
    EXPECT_FALSE(server.wasVisited());
}

TEST_F(HTMLRendererTest, aHeavyFragmentIsGivenUpAndTheNextOneIsRendered)
{
    const auto good = Overlay::make(OverlayKind::lowerThird, "Still here", 0);
    const auto expected = imageOf(good);
    ASSERT_TRUE(expected);
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
        if (image) {
            EXPECT_LE(image->height(), 2 * 4096);
        }
        const auto next = imageOf(numbered(good, ++number));
        ASSERT_TRUE(next) << number;
        EXPECT_TRUE(*next == *expected) << number;
    }
}

TEST_F(HTMLRendererTest, theLogNamesAFragmentThatIsTooLarge)
{
    static std::string said;
    said.clear();
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) { said += message.toStdString(); });
    EXPECT_FALSE(imageOf(fragment(std::string(1'500'001, 'x'))));
    qInstallMessageHandler(before);
    EXPECT_THAT(said, testing::HasSubstr("too large"));
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
