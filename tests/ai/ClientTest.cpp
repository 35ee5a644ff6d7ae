#include "ai/Client.h"

#include "ai/OverlayReply.h"
#include "support/Command.h"
#include "support/HttpServer.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"
#include "support/UniqueName.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <gmock/gmock.h>

#include <fstream>

namespace vantry::AI {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

using test::HttpRequest;
using test::HttpServer;

/// An answer in which the model says `content`.
QByteArray saying(const std::string& content)
{
    return QByteArray::fromStdString(
        Json{ { "id", "1" }, { "choices", { { { "message", { { "content", content } } } } } } }.dump());
}

class ClientTest : public test::EventLoopTest {
protected:
    ~ClientTest() override { store(std::nullopt); }

    void store(const std::optional<QString>& key)
    {
        const auto stored = Keychain(m_options.keychain).setOpenRouterKey(key);
        EXPECT_TRUE(test::pumpUntil([&] { return stored.isFinished(); }));
    }

    void writeTokens(const std::string& key) const { std::ofstream(m_tokens) << "OPENROUTER_API_KEY=" << key; }

    void makeClient()
    {
        m_client = std::make_unique<Client>(
            [this] { return Choices{ .model = m_model, .tokensPath = QString::fromStdString(m_tokens) }; }, m_options);
    }

    /// The text of the overlay that a server's answer is about, or the words of the error.
    std::string ask()
    {
        if (!m_client)
            makeClient();
        std::string outcome;
        const auto task = follow(outcome);
        EXPECT_TRUE(test::pumpUntil([&] { return !outcome.empty(); }));
        return outcome;
    }

    QCoro::Task<> follow(std::string& outcome)
    {
        try {
            const auto reply = co_await m_client->json<OverlayReply>("the rules", m_wish);
            outcome = "text: " + reply.text.value_or("none");
        } catch (const std::exception& error) {
            outcome = error.what();
        }
    }

    /// The same, of a server that does `serve` with every request.
    std::string ask(HttpServer::Serve serve)
    {
        m_server = std::make_unique<HttpServer>(std::move(serve));
        m_options.host = m_server->url();
        makeClient();
        return ask();
    }

    std::string askAnswered(int status, const QByteArray& body, const QByteArray& headers = {})
    {
        return ask([=](QTcpSocket& socket, const HttpRequest&) { HttpServer::answer(socket, status, body, headers); });
    }

    const test::TemporaryFolder m_folder;
    const std::filesystem::path m_tokens = m_folder / "tokens";
    QString m_model;
    std::string m_wish = "the wish";
    Options m_options{ .keychain = {
                           .service = QString::fromStdString(test::uniqueName("test.vantry")),
                           .longestRead = std::chrono::minutes(1), // Busy machines are slow.
                       } };
    std::unique_ptr<HttpServer> m_server;
    std::unique_ptr<Client> m_client;
};

/// The same with a key.
class KeyedClientTest : public ClientTest {
protected:
    KeyedClientTest() { writeTokens("sk-or-secret"); }
};

} // namespace

TEST_F(ClientTest, looksIntoTheKeyRingBeforeTheTokensFileAndAsksNobodyWithoutAKey)
{
    EXPECT_EQ(askAnswered(200, saying(R"({"text":"hi"})")), "No OpenRouter key. Paste yours in Settings (⌘,).");
    EXPECT_THAT(m_server->requests(), IsEmpty());
    const auto sent = [this] {
        EXPECT_EQ(ask(), "text: hi");
        return m_server->requests().back().headers.value("authorization").toStdString();
    };
    store(QStringLiteral("from-ring"));
    writeTokens("from-file");
    EXPECT_EQ(sent(), "Bearer from-ring");
    store(std::nullopt);
    EXPECT_EQ(sent(), "Bearer from-file");
}

TEST_F(KeyedClientTest, sendsExactlyWhatTheServiceWants)
{
    EXPECT_EQ(askAnswered(200, saying(R"({"text":"hi"})")), "text: hi");
    ASSERT_EQ(m_server->requests().size(), 1);
    const auto& request = m_server->requests().front();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/api/v1/chat/completions");
    EXPECT_EQ(request.headers.value("authorization"), "Bearer sk-or-secret");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.headers.value("x-title"), "Vantry");
    EXPECT_EQ(Json::parse(request.body.toStdString()),
        Json::parse(R"({"messages":[{"role":"system","content":"the rules"},{"role":"user","content":"the wish"}],
            "response_format":{"type":"json_object"},"model":"~deepseek/deepseek-flash-latest"})"));
    // The choice of the moment counts, and hours of speech go out in pieces.
    m_model = QStringLiteral("~someone/something");
    for (int i = 0; i < 200'000; ++i)
        m_wish += std::to_string(i) + ' ';
    EXPECT_EQ(ask(), "text: hi");
    const auto body = Json::parse(m_server->requests().back().body.toStdString());
    EXPECT_EQ(body["model"], "~someone/something");
    EXPECT_EQ(body["messages"][1]["content"], m_wish);
}

TEST_F(KeyedClientTest, findsTheObjectInWhatTheModelSays)
{
    EXPECT_EQ(askAnswered(200, saying("Sure!\n```json\n{\"text\": \"a {b} c\"}\n``` Enjoy :-)")), "text: a {b} c");
    EXPECT_EQ(askAnswered(200, saying("} and {")), "AI gave no JSON: } and {");
    EXPECT_EQ(
        askAnswered(200, saying(std::string(199, 'a') + "e\u0301xyz")), "AI gave no JSON: " + std::string(199, 'a') + "e\u0301");
    EXPECT_EQ(askAnswered(200, R"({"choices":[]})"), "AI gave no JSON: ");
    for (const auto& body : { QByteArray(), QByteArray("<html>"), QByteArray("[]"), QByteArray("\xff\xfe"),
             QByteArray(R"({"choices":[{"message":{"content":null}}]})"), QByteArray(100'000, '['), saying(R"({"text": 1})"),
             saying(R"({"text": } {})") })
        EXPECT_THAT(askAnswered(200, body), StartsWith("The AI's answer is not what was asked for: ")) << body.left(100).data();
}

TEST_F(KeyedClientTest, showsWhatTheServerSaysInsteadOfSuccess)
{
    EXPECT_EQ(askAnswered(401, "no user", "WWW-Authenticate: Basic realm=\"x\"\r\n"), "OpenRouter: no user");
    EXPECT_EQ(askAnswered(401, QByteArray(398, 'x') + "€uro"), "OpenRouter: " + std::string(398, 'x') + "\ufffd")
        << "cut within a character";
    for (const int status : { 201, 204, 304, 407, 429, 500 })
        EXPECT_THAT(askAnswered(status, status == 204 || status == 304 ? "" : "sorry"), StartsWith("OpenRouter: ")) << status;
}

TEST_F(KeyedClientTest, neverRepeatsTheKey)
{
    const QByteArray echo = "Wrong key: sk-or-secret. Really, sk-or-secret!";
    EXPECT_THAT(askAnswered(401, echo), Not(HasSubstr("sk-or")));
    EXPECT_THAT(askAnswered(401, QByteArray(395, 'x') + echo), Not(HasSubstr("sk-or")));
    EXPECT_THAT(askAnswered(200, saying(echo.toStdString())), Not(HasSubstr("sk-or")));
}

TEST_F(KeyedClientTest, failsWhenNoWholeAnswerComesAndAsksOnlyOnce)
{
    const auto isNetwork = testing::AllOf(Not(StartsWith("OpenRouter")), Not(StartsWith("text")), Not(StartsWith("The AI")));
    const auto write = [](const QByteArray& bytes) {
        return [bytes](QTcpSocket& socket, const HttpRequest&) {
            socket.write(bytes);
            socket.close();
        };
    };
    EXPECT_EQ(ask(write("")), "The server closed the connection without an answer.");
    EXPECT_THAT(m_server->requests(), SizeIs(1)) << "a request costs money";
    EXPECT_THAT(ask(write("nonsense\r\n\r\n")), isNetwork);
    EXPECT_THAT(m_server->requests(), SizeIs(1));
    EXPECT_THAT(ask(write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + saying("{}"))), isNetwork);
    EXPECT_THAT(ask([](QTcpSocket& socket, const HttpRequest&) { socket.abort(); }), isNetwork);
    m_options.host = QUrl(QStringLiteral("http://nowhere.invalid"));
    makeClient();
    EXPECT_THAT(ask(), isNetwork);
}

TEST_F(KeyedClientTest, doesNotWaitForASilentServer)
{
    m_options.longestSilence = std::chrono::milliseconds(300);
    EXPECT_EQ(ask([](QTcpSocket&, const HttpRequest&) {}), "The server did not answer in time.");
    EXPECT_EQ(ask([](QTcpSocket& socket, const HttpRequest&) { socket.write("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{"); }),
        "The server did not answer in time.");
}

TEST_F(KeyedClientTest, takesTenMegabytesAndNoMore)
{
    const auto padded = [](qsizetype size) { return saying(R"({"text":"big"})").leftJustified(size, ' '); };
    constexpr qsizetype megabyte = 1 << 20;
    EXPECT_EQ(askAnswered(200, padded(10 * megabyte)), "text: big");
    EXPECT_EQ(askAnswered(200, padded(11 * megabyte)), "The server's answer is larger than 10 MB.");
    // Packed, an answer may be small. (What is packed too well is refused by the network library.)
    const auto packed = QByteArray::fromStdString(
        test::runCommand("head -c 1M /dev/urandom | base64 -w 6 | sed \"s/$/$(printf '%200s' '')/\" | gzip"));
    EXPECT_EQ(askAnswered(200, packed, "Content-Encoding: gzip\r\n"), "The server's answer is larger than 10 MB.");
}

TEST_F(KeyedClientTest, isNotSentElsewhere)
{
    HttpServer other(
        [](QTcpSocket& socket, const HttpRequest&) { HttpServer::answer(socket, 200, saying(R"({"text":"other"})")); });
    for (const int status : { 302, 303, 308 }) {
        EXPECT_EQ(askAnswered(status, "moved", "Location: " + other.url().toEncoded() + "/elsewhere\r\n"), "OpenRouter: moved")
            << status;
        EXPECT_THAT(other.requests(), IsEmpty()) << "neither key nor words";
    }
}

TEST_F(KeyedClientTest, trustsNobodyWhoCannotProveWhoTheyAre)
{
    const auto file = [this](const char* name) { return QString::fromStdString(m_folder / name); };
    test::runCommand("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=test "
                     "-addext subjectAltName=IP:127.0.0.1 -keyout "
        + (m_folder / "key").string() + " -out " + (m_folder / "certificate").string() + " 2>&1");
    const auto certificates = QSslCertificate::fromPath(file("certificate"));
    QFile keyFile(file("key"));
    ASSERT_TRUE(keyFile.open(QIODevice::ReadOnly));
    QSslConfiguration tls;
    tls.setLocalCertificateChain(certificates);
    tls.setPrivateKey(QSslKey(&keyFile, QSsl::Ec));
    m_server = std::make_unique<HttpServer>(
        [](QTcpSocket& socket, const HttpRequest&) { HttpServer::answer(socket, 200, saying(R"({"text":"hi"})")); }, tls);
    m_options.host = m_server->url();
    EXPECT_THAT(ask(), HasSubstr("SSL"));
    EXPECT_THAT(m_server->requests(), IsEmpty());

    const auto usual = QSslConfiguration::defaultConfiguration();
    auto trusting = usual;
    trusting.addCaCertificates(certificates);
    QSslConfiguration::setDefaultConfiguration(trusting);
    makeClient();
    EXPECT_EQ(ask(), "text: hi");
    QSslConfiguration::setDefaultConfiguration(usual);
}

} // namespace vantry::AI
