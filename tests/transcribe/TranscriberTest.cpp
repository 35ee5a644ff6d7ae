#include "transcribe/Transcriber.h"

#include "base/AppError.h"
#include "media/Sound.h"
#include "support/Command.h"
#include "support/ModelServer.h"
#include "support/PumpUntil.h"
#include "support/ScriptedModel.h"
#include "support/TemporaryFolder.h"
#include "support/TestMovie.h"
#include "support/Voice.h"
#include "transcribe/ShellHelper.h"

#include <QCryptographicHash>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>

namespace vantry {

namespace fs = std::filesystem;
using test::ModelServer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::string textOf(const std::vector<Line>& lines)
{
    std::string text;
    for (const Line& line : lines)
        text += (text.empty() ? "" : " ") + line.text;
    return text;
}

/// Whether this process reads it.
bool isOpenHere(const fs::path& file)
{
    std::error_code ignored; // What was open may be closed meanwhile.
    return std::ranges::any_of(fs::directory_iterator("/proc/self/fd"),
        [&](const auto& entry) { return fs::read_symlink(entry.path(), ignored) == file; });
}

/// Clips as they are recorded, in which synthetic voices speak.
class TranscriberTest : public test::EventLoopTest {
protected:
    fs::path clip(const std::vector<float>& voice, bool system = false)
    {
        fs::path file = m_folder / "clip-1.mov";
        test::writeTestMovie(file,
            { .duration = static_cast<double>(voice.size()) / sampleRate,
                .screen = { 64, 48 },
                .audio = true,
                .system = system,
                .voice = voice });
        return file;
    }

    std::vector<Line> linesOf(const fs::path& movie, const std::string& locale = "en-US")
    {
        return *Transcriber(m_options).transcribe(movie, locale);
    }

    std::string failureOf(const fs::path& movie, const std::string& locale = "en-US")
    {
        try {
            linesOf(movie, locale);
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    }

    const test::TemporaryFolder m_folder;
    Transcriber::Options m_options{ .models = m_folder / "models", .source = "http://127.0.0.1:1/" };
};

/// With a model that is not trained.
class WhisperTest : public TranscriberTest {
protected:
    WhisperTest() { publish(m_model); }

    void publish(const QByteArray& model)
    {
        m_options.model = SpeechModel{ .file = "model.bin",
            .bytes = model.size(),
            .sha256 = QCryptographicHash::hash(model, QCryptographicHash::Sha256).toHex().toStdString() };
    }

    fs::path installed() const { return m_options.models / m_options.model->file; }

    void install(const QByteArray& model)
    {
        fs::create_directories(m_options.models);
        std::ofstream(installed(), std::ios::binary).write(model.data(), model.size());
    }

    /// Of the right size, but it says at its beginning that it is something else.
    QByteArray damaged() const { return QByteArray(m_model).replace(0, 4, "none"); }

    fs::path voice()
    {
        return clip(test::joined({ test::quiet(0.5), test::spoken("Welcome to my channel", "awb"), test::quiet(0.5) }));
    }

    const QByteArray m_model = test::scriptedModel({ { 0, 1.5, { " \u00a0Hello", " there", ".\u2028" } },
        { 1.5, 20, { " \u3000", " How", " are you?" } }, { 20, 28, { " \u3000\u00a0" } } });
};

} // namespace

TEST_F(TranscriberTest, whatIsSaidBecomesLinesAtItsTime)
{
    const auto sound = test::joined({ test::quiet(2), test::spoken("Welcome to my channel", "awb"), test::quiet(1.5),
        test::spoken("Today we build a screen recorder", "rms"), test::quiet(1) });
    const auto lines = linesOf(clip(sound));
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_THAT(lines[0].text, HasSubstr("welcome to my channel"));
    EXPECT_THAT(lines[1].text, HasSubstr("screen recorder"));
    EXPECT_NEAR(lines[0].start, 2.2, 0.3); // Each voice takes a breath before it begins.
    EXPECT_NEAR(lines[1].start, 2 + 1.7 + 1.5 + 0.2, 0.5);
    for (const Line& line : lines)
        EXPECT_LT(line.start, line.end);
    EXPECT_LT(lines[1].end, static_cast<double>(sound.size()) / sampleRate);
}

TEST_F(TranscriberTest, theMicrophoneIsTranscribedWhereverItStands)
{
    const auto movie = clip(test::joined({ test::quiet(1), test::spoken("Welcome to my channel", "awb"), test::quiet(1) }), true);
    const fs::path swapped = m_folder / "swapped.mov";
    test::runCommand("ffmpeg -v error -i " + movie.string() + " -map 0:v:0 -map 0:a:1 -map 0:a:0 -c copy " + swapped.string());
    EXPECT_THAT(textOf(linesOf(swapped)), HasSubstr("welcome to my channel"));
}

TEST_F(TranscriberTest, withoutAVoiceThereAreNoLines)
{
    const fs::path movie = m_folder / "clip.mov";
    test::writeTestMovie(movie, { .duration = 1, .screen = { 64, 48 }, .system = true });
    EXPECT_THAT(linesOf(movie), IsEmpty()) << "no microphone";
    test::writeTestMovie(movie, { .duration = 3, .screen = { 64, 48 }, .audio = true, .click = 1.2 });
    EXPECT_THAT(linesOf(movie), IsEmpty()) << "a tone and a click";
    EXPECT_THAT(linesOf(clip(test::quiet(3)), "de-DE"), IsEmpty()) << "silence needs no model";
}

TEST_F(TranscriberTest, anUnknownLanguageIsNamed)
{
    const auto movie = clip(test::spoken("Welcome to my channel"));
    EXPECT_EQ(failureOf(movie, "tlh-Qo"), "On-device transcription doesn't support “tlh-Qo”. Pick another language in Settings.");
    EXPECT_THAT(failureOf(movie, "english"), HasSubstr("“english”"));
    EXPECT_EQ(failureOf(movie, "de-DE"), "The speech model could not be downloaded: there is no way to its server");
    EXPECT_EQ(failureOf(movie, "EN_gb"), "");
}

TEST_F(TranscriberTest, aClipThatCannotBeReadIsAnError)
{
    const auto movie = clip(test::quiet(1));
    fs::resize_file(movie, fs::file_size(movie) / 2);
    EXPECT_THAT(failureOf(movie), HasSubstr("clip-1.mov"));
    m_options.helper.program = "/bin/false";
    EXPECT_THAT(failureOf(clip(test::spoken("Welcome to my channel"))), HasSubstr("ended unexpectedly"));
}

TEST_F(WhisperTest, itIsPreferredWhereItsModelIsInstalled)
{
    install(m_model);
    const auto voice = test::spoken("Welcome to my channel", "awb");
    const auto lines = linesOf(clip(test::joined({ test::quiet(3), voice, test::quiet(0.6), voice, test::quiet(2) })), "nb-NO");
    ASSERT_THAT(lines, SizeIs(2)) << "a blank is no line";
    EXPECT_EQ(lines[0].text, "Hello there.");
    EXPECT_EQ(lines[1].text, "How are you?");
    const double length = static_cast<double>(voice.size()) / sampleRate;
    EXPECT_NEAR(lines[0].start, 3.2, 0.25) << "where the voice begins";
    EXPECT_NEAR(lines[0].end, 4.5, 0.35) << "as the model says";
    EXPECT_NEAR(lines[1].end, 3 + 2 * length + 0.6, 0.5) << "where the voice ends";
}

TEST_F(WhisperTest, whatIsHeardInSilenceIsNoLine)
{
    const auto model = test::scriptedModel(
        { { 0, 1.5, { " Hello" } }, { 4, 6, { " Thanks", " for watching." } }, { 8, 28, { " Good", "bye." } } });
    publish(model);
    install(model);
    const auto voice = test::spoken("Welcome to my channel", "awb");
    const auto lines = linesOf(clip(test::joined({ voice, test::quiet(8), voice, test::quiet(1) })), "de-DE");
    EXPECT_EQ(textOf(lines), "Hello Goodbye.");
}

TEST_F(WhisperTest, longSpeechIsHeardInStretches)
{
    install(m_model);
    std::vector<float> sound;
    while (sound.size() < std::size_t{ 40 } * sampleRate)
        sound = test::joined(
            { sound, test::spoken("Welcome to my channel, today we build a screen recorder.", "awb"), test::quiet(0.5) });
    const auto lines = linesOf(clip(sound), "de-DE");
    EXPECT_THAT(lines, SizeIs(4)) << "two for each stretch";
    EXPECT_TRUE(std::ranges::is_sorted(lines, {}, &Line::start));
    EXPECT_NEAR(lines.back().end, static_cast<double>(sound.size()) / sampleRate, 1);
}

TEST_F(WhisperTest, aModelThatCannotBeHadIsAskedForOnceAndEnglishNeedsNone)
{
    const ModelServer server([&](qsizetype) { return ModelServer::Reply{ .status = 503 }; });
    m_options.source = server.source();
    const auto movie = voice();
    Transcriber transcriber(m_options);
    for (int i = 0; i < 2; ++i)
        EXPECT_THAT(textOf(*transcriber.transcribe(movie, "en-US")), HasSubstr("welcome to my channel"));
    EXPECT_THAT(server.requests(), SizeIs(1));
    EXPECT_THAT(failureOf(movie, "de-DE"), HasSubstr("could not be downloaded")) << "there is a network, but no model";
}

TEST_F(WhisperTest, aModelThatIsWholeButNoneIsAnError)
{
    const QByteArray nonsense(m_model.size(), 'x');
    publish(nonsense);
    install(nonsense);
    const ModelServer server([&](qsizetype) { return ModelServer::whole(nonsense); });
    m_options.source = server.source();
    EXPECT_THAT(failureOf(voice()), HasSubstr("model.bin cannot be used"));
    EXPECT_THAT(server.requests(), IsEmpty());
}

TEST_F(WhisperTest, aModelThatWasDamagedIsFetchedAnew)
{
    install(damaged());
    EXPECT_THAT(textOf(linesOf(voice(), "en-US")), HasSubstr("welcome to my channel")) << "there is no way to another";
    EXPECT_FALSE(fs::exists(installed()));
    install(damaged());
    EXPECT_THAT(failureOf(voice(), "de-DE"), HasSubstr("could not be downloaded"));

    install(damaged());
    const ModelServer server([&](qsizetype from) { return ModelServer::rest(m_model, from); });
    m_options.source = server.source();
    for (int run = 0; run < 2; ++run)
        EXPECT_THAT(textOf(linesOf(voice(), "de-DE")), HasSubstr("Hello there."));
    EXPECT_THAT(server.requests(), ElementsAre(0)) << "once";
}

TEST_F(WhisperTest, aModelThatIsDamagedAgainAndAgainIsFetchedOnce)
{
    install(m_model);
    m_options.helper =
        test::shellHelper(m_folder / "helper", "[ $1 = whisper ] && printf x | dd of=\"$2\" conv=notrunc status=none; exit 3");
    const ModelServer server([&, asked = 0](qsizetype from) mutable {
        return ++asked == 1 ? ModelServer::rest(m_model, from) : ModelServer::Reply{ .status = 404 };
    });
    m_options.source = server.source();
    EXPECT_THAT(failureOf(voice()), HasSubstr("ended unexpectedly"));
    EXPECT_THAT(server.requests(), ElementsAre(0));
}

TEST_F(WhisperTest, cancellingDoesNotWaitUntilAModelIsChecked)
{
    constexpr std::int64_t tooMuch = 1LL << 40; // for anybody to wait for
    m_options.model->bytes = tooMuch;
    install({});
    fs::resize_file(installed(), tooMuch);
    m_options.helper.program = "/bin/false";
    std::stop_source cancel;
    const std::jthread canceller([&](const std::stop_token& end) {
        while (!isOpenHere(installed()) && !end.stop_requested())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        cancel.request_stop();
    });
    EXPECT_EQ(Transcriber(m_options).transcribe(voice(), "de-DE", cancel.get_token()), std::nullopt);
    EXPECT_TRUE(fs::exists(installed())) << "nobody knows that it is damaged";
}

} // namespace vantry
