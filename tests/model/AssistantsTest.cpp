#include "model/ModelTest.h"
#include "support/HttpServer.h"
#include "support/UniqueName.h"

#include <QCoroTask>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace vantry {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

using Json = nlohmann::json;

/// A model whose AI is a server of the test, which answers when it is told to.
class AssistantsTest : public test::ProjectsTest {
protected:
    AssistantsTest()
    {
        std::ofstream(m_folder / "tokens") << "OPENROUTER_API_KEY=sk-or-test";
        m_model->settings()->setTokensPath(QString::fromStdString(m_folder / "tokens"));
        QObject::connect(m_model.get(), &AppModel::busyChanged, m_model.get(), [this] { m_busy.push_back(text(m_model->busy())); });
    }

    /// Opens a project in which "Hi" is said.
    void openSpoken(const std::string& name)
    {
        m_model->open(writeProject(name));
        m_model->edit(Rebuild::No, [](Project& project) { project.clips[0].transcript = { { 0, 1, "Hi" } }; });
    }

    Project onDisk() { return m_model->saved().result() ? loadProject(*m_model->folder()) : Project(); }
    static std::string text(const std::optional<QString>& shown) { return shown.value_or(QString()).toStdString(); }
    std::string alert() const { return text(m_model->alert()); }
    std::string status() const { return text(m_model->status()); }

    /// Waits until the AI is asked, and gives what it is told by the user's message.
    std::string asked()
    {
        const auto count = m_answered;
        EXPECT_TRUE(test::pumpUntil([&] { return m_server.requests().size() > count; }));
        const auto body = Json::parse(m_server.requests().back().body.toStdString());
        m_system = body["messages"][0]["content"];
        return body["messages"][1]["content"];
    }

    /// Answers the question that waits.
    void answer(const std::string& content)
    {
        const Json reply{ { "choices", { { { "message", { { "content", content } } } } } } };
        test::HttpServer::answer(*m_socket, 200, QByteArray::fromStdString(reply.dump()));
        ++m_answered;
    }

    const Project& project() const { return *m_model->project(); }

    QPointer<QTcpSocket> m_socket;
    std::size_t m_answered = 0;
    std::string m_system;
    std::vector<std::string> m_busy; ///< Every text that was shown.
    test::HttpServer m_server{ [this](QTcpSocket& socket, const test::HttpRequest&) { m_socket = &socket; } };
    std::unique_ptr<AppModel> m_model = std::make_unique<AppModel>(AppModel::Options{
        .root = m_root,
        .settingsFile = m_folder / "settings.ini",
        .transcribe = Transcribe::OnRequest,
        .speech = withoutSpeechModel(),
        .ai = { .host = m_server.url(), .keychain = { .service = QString::fromStdString(test::uniqueName("test.vantry")) } },
    });
};

bool wait(QCoro::Task<bool>& task)
{
    EXPECT_TRUE(test::pumpUntil([&] { return task.isReady(); }));
    return task.isReady() && QCoro::waitFor(std::move(task));
}

void wait(const QCoro::Task<>& task)
{
    EXPECT_TRUE(test::pumpUntil([&] { return task.isReady(); }));
}

} // namespace

TEST_F(AssistantsTest, anOverlayIsAddedWhereThePlayheadWas)
{
    m_model->open(writeProject("one", 100));
    m_model->edit(Rebuild::No, [](Project& project) { project.clips[0].transcript = { { 60, 61, "Look here" } }; });
    m_model->setPlayhead(65);
    const int revision = m_model->revision();
    auto task = m_model->aiOverlay(QStringLiteral(" Say hello "));
    EXPECT_THAT(asked(), AllOf(StartsWith("Instruction:  Say hello \n"), EndsWith("\n[1:00] Look here")));
    EXPECT_THAT(m_system, HasSubstr("short overlays"));
    m_model->setPlayhead(20);
    m_model->edit(Rebuild::No, [](Project& project) { project.overlays.push_back(Overlay::make(OverlayKind::text, "mine", 1)); });
    answer(R"({"kind":"lowerThird","duration":99})");
    EXPECT_TRUE(wait(task));
    ASSERT_THAT(project().overlays, SizeIs(2)) << "what was done meanwhile stays";
    const auto& added = project().overlays[1];
    EXPECT_EQ(added.start, 65);
    EXPECT_EQ(added.text, " Say hello ");
    EXPECT_EQ(m_model->revision(), revision + 1);
    EXPECT_THAT(onDisk().overlays, SizeIs(2));
    EXPECT_THAT(m_busy, ElementsAre("Asking AI…", ""));
}

TEST_F(AssistantsTest, everyQuestionAddsItsOwnOverlay)
{
    m_model->open(writeProject("one"));
    auto first = m_model->aiOverlay(QStringLiteral("first"));
    EXPECT_THAT(asked(), HasSubstr("first"));
    const QPointer<QTcpSocket> firstSocket = m_socket;
    ++m_answered;
    auto second = m_model->aiOverlay(QStringLiteral("second"));
    EXPECT_THAT(asked(), HasSubstr("second"));
    answer("{}");
    EXPECT_TRUE(wait(second));
    m_socket = firstSocket;
    answer("{}");
    EXPECT_TRUE(wait(first));
    EXPECT_EQ(project().overlays[0].text, "second");
    EXPECT_EQ(project().overlays[1].text, "first");
}

TEST_F(AssistantsTest, failuresAreAlerts)
{
    auto overlay = m_model->aiOverlay(QStringLiteral("a"));
    EXPECT_FALSE(wait(overlay)) << "there is no project";
    wait(m_model->generateYouTube());
    EXPECT_THAT(m_server.requests(), IsEmpty());

    openSpoken("one");
    overlay = m_model->aiOverlay(QStringLiteral("a"));
    asked();
    answer("I would rather not");
    EXPECT_FALSE(wait(overlay));
    EXPECT_EQ(alert(), "AI gave no JSON: I would rather not");
    m_model->setAlert(std::nullopt);

    const auto details = m_model->generateYouTube();
    asked();
    answer(R"({"description":"new","chapters":[{"time":1}]})");
    wait(details);
    EXPECT_THAT(alert(), EndsWith("chapters[0].title: missing"));
    EXPECT_EQ(project().youtube.description, "");
    EXPECT_EQ(m_model->busy(), std::nullopt);
    EXPECT_THAT(project().overlays, IsEmpty());
}

TEST_F(AssistantsTest, whatComesAfterAnotherProjectWasOpenedIsDropped)
{
    openSpoken("two");
    openSpoken("one");
    auto overlay = m_model->aiOverlay(QStringLiteral("a"));
    asked();
    m_model->open(m_root / "two");
    answer("{}");
    EXPECT_FALSE(wait(overlay));
    EXPECT_EQ(status(), "AI result dropped: you switched recordings");

    const auto details = m_model->generateYouTube();
    asked();
    EXPECT_EQ(status(), "") << "the next question is another matter";
    m_model->newRecording();
    answer(R"({"titles":["A"]})");
    wait(details);
    EXPECT_EQ(status(), "AI result dropped: you switched recordings");
    EXPECT_THAT(alert(), IsEmpty());
    EXPECT_EQ(m_model->busy(), std::nullopt);
    for (const char* name : { "one", "two" }) {
        EXPECT_THAT(loadProject(m_root / name).overlays, IsEmpty());
        EXPECT_THAT(loadProject(m_root / name).youtube.titles, IsEmpty());
    }
}

TEST_F(AssistantsTest, detailsAreWrittenFromSpeechAndOverlays)
{
    m_model->open(writeProject("one", 60));
    wait(m_model->generateYouTube());
    EXPECT_EQ(alert(), "No speech found to describe. Check the language in Settings.");
    EXPECT_THAT(m_busy, ElementsAre("Transcribing…", ""));
    m_model->edit(Rebuild::No, [](Project& project) {
        project.clips[0].transcript = { { 3, 4, "Hello" } };
        project.overlays = { Overlay::make(OverlayKind::text, "Card", 5) };
    });
    const int revision = m_model->revision();
    const auto details = m_model->generateYouTube();
    EXPECT_EQ(asked(), "Working title: one\nLength: 1:00\nTranscript:\n[0:03] Hello\nOn-screen text:\n[0:05] on-screen: Card");
    EXPECT_THAT(m_system, HasSubstr("publishing assistant"));
    answer(R"({"titles":["A","B"]})");
    wait(details);
    EXPECT_THAT(m_busy, ElementsAre("Transcribing…", "", "Transcribing…", "Writing title, description, tags & chapters…", ""));
    EXPECT_EQ(onDisk().youtube.title, "A");
    EXPECT_EQ(m_model->revision(), revision);
}

TEST_F(AssistantsTest, quittingMeanwhileIsClean)
{
    openSpoken("one");
    auto overlay = m_model->aiOverlay(QStringLiteral("a"));
    asked();
    ++m_answered;
    const auto details = m_model->generateYouTube();
    asked();
    const auto atOnce = m_model->generateYouTube();
    bool isReady = false;
    QObject::connect(m_model.get(), &AppModel::readyToQuit, m_model.get(), [&] { isReady = true; });
    m_model->quit();
    EXPECT_TRUE(test::pumpUntil([&] { return isReady; }));
    m_model.reset();
    EXPECT_FALSE(wait(overlay));
    wait(details);
    wait(atOnce);
}

} // namespace vantry
