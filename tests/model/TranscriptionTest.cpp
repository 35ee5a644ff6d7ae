#include "base/HostTime.h"
#include "media/Sound.h"
#include "model/ModelTest.h"
#include "support/MediaServer.h"
#include "support/ModelServer.h"
#include "support/ScriptedModel.h"
#include "support/TestMovie.h"
#include "support/Voice.h"
#include "support/XServer.h"

#include <QCryptographicHash>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <optional>

namespace vantry {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using test::pumpUntil;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;

namespace {

/// The line that the helper in `scriptedHelper` hears in every clip.
const Line scripted{ 1, 2, "as told" };

const std::vector<float>& voice()
{
    static const auto samples = test::joined({ test::quiet(0.5), test::spoken("Welcome to my channel", "awb"), test::quiet(0.5) });
    return samples;
}

constexpr auto withoutModel =
    "Transcribed less well than it could be. The speech model could not be downloaded: there is no way to its server";
const QByteArray model = test::scriptedModel({ { 0, 1, { " Hei", " hei" } } });

/// A model that transcribes by itself, and remembers what its status said.
class TranscriptionTest : public test::ProjectsTest {
protected:
    TranscriptionTest() { start(); }

    void start(const std::function<void(Transcriber::Options&)>& change = {})
    {
        AppModel::Options options{ .root = m_root, .settingsFile = m_folder / "settings.ini", .speech = withoutSpeechModel() };
        if (change)
            change(options.speech);
        m_app.emplace(options);
        QObject::connect(&*m_app, &AppModel::statusChanged, &*m_app, [this] {
            if (m_app->status())
                m_said.push_back(m_app->status()->toStdString());
        });
    }

    /// A helper of the shell's that waits until there is a file "go" before it hears anything.
    void startWithScriptedHelper()
    {
        const fs::path program = m_folder / "helper";
        std::ofstream(program) << "#!/bin/sh\necho >>" << (m_folder / "heard") << "\nuntil [ -e " << (m_folder / "go")
                               << " ]; do sleep 0.01; done\necho '{\"start\": 1, \"end\": 2, \"text\": \" as told \"}'\n";
        fs::permissions(program, fs::perms::owner_all);
        start([&](Transcriber::Options& options) { options.helper.program = program; });
    }

    /// With a model that always hears the same, when it can be had.
    void startWithModel(const std::string& source)
    {
        start([&](Transcriber::Options& options) {
            options.source = source;
            options.model = SpeechModel{ .file = "model.bin",
                .bytes = model.size(),
                .sha256 = QCryptographicHash::hash(model, QCryptographicHash::Sha256).toHex().toStdString() };
        });
    }

    bool isHeard(std::uintmax_t clips)
    {
        return pumpUntil([&] {
            std::error_code ignored;
            return fs::exists(m_folder / "heard") && fs::file_size(m_folder / "heard", ignored) == clips;
        });
    }

    void go() { std::ofstream(m_folder / "go") << "now"; }

    /// A project with a clip for each, with or without a microphone.
    fs::path writeSpokenProject(const std::string& name, const std::vector<bool>& clips)
    {
        const auto folder = writeProject(name);
        Project project = loadProject(folder);
        project.clips.clear();
        for (const bool hasMicrophone : clips) {
            const std::string file = "clip-" + std::to_string(project.clips.size()) + ".mov";
            const double length = static_cast<double>(voice().size()) / sampleRate;
            test::writeTestMovie(
                folder / file, { .duration = length, .screen = { 64, 48 }, .audio = hasMicrophone, .voice = voice() });
            project.clips.push_back({ .file = file, .duration = length, .keep = length });
        }
        saveProject(project, folder);
        return folder;
    }

    bool ends()
    {
        return pumpUntil([&] { return !m_app->transcribing(); });
    }

    std::string status() const { return m_app->status().value_or(QString()).toStdString(); }
    std::optional<std::vector<Line>> transcript(std::size_t clip) const { return m_app->project()->clips.at(clip).transcript; }

    std::optional<AppModel> m_app;
    std::vector<std::string> m_said;
};

} // namespace

TEST_F(TranscriptionTest, openingAProjectTranscribesItsClips)
{
    const fs::path folder = writeSpokenProject("one", { true, false });
    m_app->open(folder);
    EXPECT_TRUE(pumpUntil([&] { return status() == "Transcribing…"; }));
    ASSERT_TRUE(ends());
    EXPECT_EQ(status(), withoutModel);
    ASSERT_THAT(transcript(0), Optional(SizeIs(1)));
    EXPECT_THAT(transcript(0)->front().text, HasSubstr("welcome to my channel"));
    EXPECT_THAT(transcript(1), Optional(IsEmpty()));
    ASSERT_TRUE(m_app->saved().result());
    EXPECT_EQ(loadProject(folder).clips.at(0).transcript, transcript(0));
    EXPECT_EQ(m_app->revision(), 1) << "the preview stays as it is";

    m_said.clear();
    m_app->open(folder);
    ASSERT_TRUE(ends());
    EXPECT_THAT(m_said, IsEmpty()) << "what has a transcript is not transcribed again";
}

TEST_F(TranscriptionTest, aFailureEndsTheRunAndIsSaid)
{
    m_app->settings()->setSpeechLocale(u"tlh-QO"_s);
    const fs::path folder = writeSpokenProject("one", { false, true, false });
    m_app->open(folder);
    ASSERT_TRUE(ends());
    EXPECT_EQ(
        status(), "Transcription failed: On-device transcription doesn't support “tlh-QO”. Pick another language in Settings.");
    EXPECT_THAT(transcript(0), Optional(IsEmpty()));
    EXPECT_EQ(transcript(1), std::nullopt);
    EXPECT_EQ(transcript(2), std::nullopt);

    m_app->settings()->setSpeechLocale({});
    QCoro::waitFor(m_app->transcribeAll());
    EXPECT_EQ(status(), withoutModel);
    EXPECT_THAT(transcript(1), Optional(SizeIs(1))) << "nothing said means American English";
    EXPECT_THAT(transcript(2), Optional(IsEmpty()));
}

TEST_F(TranscriptionTest, anotherProjectTakesTheFirstOnesPlace)
{
    startWithScriptedHelper();
    const fs::path one = writeSpokenProject("one", { true, true });
    const fs::path two = writeSpokenProject("two", { true });
    m_app->open(one);
    ASSERT_TRUE(isHeard(1));
    m_app->open(two);
    ASSERT_TRUE(isHeard(2)) << "the first is given up, though it is not ready";
    go();
    ASSERT_TRUE(pumpUntil([&] { return transcript(0).has_value(); }));
    EXPECT_THAT(transcript(0), Optional(ElementsAre(scripted)));
    ASSERT_TRUE(ends());
    EXPECT_EQ(status(), withoutModel);
    EXPECT_EQ(loadProject(one).clips.at(0).transcript, std::nullopt);

    m_app->open(one);
    m_app->newRecording();
    ASSERT_TRUE(ends());
    EXPECT_EQ(m_app->status(), std::nullopt);
}

TEST_F(TranscriptionTest, aClipThatIsRemovedMeanwhileStaysAwayAndOneThatIsAddedComesNext)
{
    startWithScriptedHelper();
    m_app->open(writeSpokenProject("one", { true, true }));
    ASSERT_TRUE(isHeard(1));
    m_app->edit(Rebuild::No, [](Project& project) {
        project.clips.erase(project.clips.begin());
        Clip another = project.clips.front();
        another.id = Uuid::random();
        project.clips.push_back(another);
    });
    m_app->transcribeMissing();
    go();
    ASSERT_TRUE(pumpUntil([&] { return transcript(1).has_value(); }));
    ASSERT_TRUE(ends());
    EXPECT_THAT(m_app->project()->clips, Each(Field(&Clip::transcript, Optional(ElementsAre(scripted)))));
    EXPECT_THAT(m_app->project()->clips, SizeIs(2));
    EXPECT_TRUE(isHeard(3));
}

TEST_F(TranscriptionTest, aRecordingIsTranscribedWhenItHasEnded)
{
    const test::MediaServer withoutMicrophone;
    const test::XServer screen(320, 240);
    m_app->record();
    ASSERT_TRUE(pumpUntil([&] { return m_app->phase() == Phase::recording(); }));
    ASSERT_TRUE(pumpUntil([&] { return m_app->liveTime() >= 0.5; }));
    m_app->stop(0);
    EXPECT_TRUE(pumpUntil([&] { return m_app->phase() == Phase::editing() && transcript(0) == std::vector<Line>(); }));
}

TEST_F(TranscriptionTest, quittingDoesNotWaitForTheEnd)
{
    startWithScriptedHelper();
    m_app->open(writeSpokenProject("one", { true, true }));
    ASSERT_TRUE(isHeard(1));
    bool ready = false;
    QObject::connect(&*m_app, &AppModel::readyToQuit, &*m_app, [&] { ready = true; });
    m_app->quit();
    EXPECT_TRUE(pumpUntil([&] { return ready; }));
    EXPECT_FALSE(m_app->transcribing());
    EXPECT_EQ(transcript(0), std::nullopt);

    m_app->transcribeMissing();
    ASSERT_TRUE(isHeard(2));
    m_app.reset(); // Nor does the end of the model.
}

TEST_F(TranscriptionTest, aModelIsFetchedWithItsProgressInTheStatus)
{
    const test::ModelServer server([&](qsizetype from) { return test::ModelServer::rest(model, from); });
    startWithModel(server.source());
    m_app->settings()->setSpeechLocale(u"nb-NO"_s);
    m_app->open(writeSpokenProject("one", { true }));
    ASSERT_TRUE(ends());
    ASSERT_THAT(transcript(0), Optional(SizeIs(1)));
    EXPECT_EQ(transcript(0)->front().text, "Hei hei");
    EXPECT_EQ(m_said.front(), "Transcribing…");
    EXPECT_THAT(m_said, Contains("Downloading the speech model… 100%"));
    EXPECT_EQ(m_said.back(), "Transcribing…");
    EXPECT_EQ(m_app->status(), std::nullopt);
}

TEST_F(TranscriptionTest, whatALesserEngineHeardIsHeardAgainWhenTheModelHasCome)
{
    startWithModel("http://127.0.0.1:1/");
    const fs::path folder = writeSpokenProject("one", { true, true });
    m_app->settings()->setSpeechLocale(u"de-DE"_s);
    m_app->open(folder);
    ASSERT_TRUE(ends());
    EXPECT_EQ(status(), "Transcription failed: The speech model could not be downloaded: there is no way to its server");
    m_app->settings()->setSpeechLocale({});
    QCoro::waitFor(m_app->transcribeAll());
    EXPECT_EQ(status(), withoutModel);
    m_app->edit(Rebuild::No, [](Project& project) { project.clips[1].transcript->front().text = "mine"; });
    ASSERT_TRUE(m_app->saved().result());

    fs::create_directories(m_folder / "models");
    std::ofstream(m_folder / "models/model.bin").write(model.data(), model.size());
    startWithModel("http://127.0.0.1:1/");
    m_app->open(folder);
    ASSERT_TRUE(ends());
    EXPECT_EQ(transcript(0)->front().text, "Hei hei");
    EXPECT_EQ(transcript(1)->front().text, "mine") << "what somebody has changed stays";
    EXPECT_EQ(m_app->status(), std::nullopt);
    m_app->transcribeAgain();
    ASSERT_TRUE(pumpUntil([&] { return transcript(1)->front().text == "Hei hei"; }));
}

} // namespace vantry
