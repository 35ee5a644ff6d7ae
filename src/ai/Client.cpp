#include "ai/Client.h"

#include "ai/Characters.h"
#include "ai/Post.h"
#include "ai/TokensFile.h"
#include "base/AppError.h"
#include "platform/NetworkRoute.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace vantry::AI {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestAnswer = 10 << 20;
constexpr qsizetype errorBytesShown = 400;

QString orDefault(const QString& chosen, QLatin1StringView otherwise)
{
    return chosen.isEmpty() ? QString(otherwise) : chosen;
}

std::filesystem::path expanded(const QString& path)
{
    const bool isAtHome = path == "~"_L1 || path.startsWith("~/"_L1);
    return QFile::encodeName(isAtHome ? QDir::homePath() + path.sliced(1) : path).toStdString();
}

/// The body, without the key wherever the server repeats it. Throws when there is no success.
std::string bodyOf(HttpAnswer answer, const QByteArray& key)
{
    constexpr int success = 200;
    answer.body.replace(key, "•••");
    if (answer.status != success)
        throw AppError("OpenRouter: " + readableText(answer.body.left(errorBytesShown).toStdString()));
    return answer.body.toStdString();
}

} // namespace

Client::Client(std::function<Choices()> choices, Options options)
    : m_choices(std::move(choices))
    , m_options(std::move(options))
    , m_keychain(m_options.keychain)
{
}

Client::~Client()
{
    abortAll(*this);
}

QString Client::model() const
{
    return orDefault(m_choices().model, defaultModel);
}

QCoro::Task<std::optional<QString>> Client::apiKey()
{
    const QPointer<Client> self(this);
    const QString tokensPath = orDefault(m_choices().tokensPath, defaultTokensPath);
    auto key = co_await m_keychain.openRouterKey();
    if (!key && self)
        key = co_await keyIn(expanded(tokensPath));
    co_return key;
}

QFuture<std::optional<QString>> Client::keyIn(const std::filesystem::path& tokensFile)
{
    return inBackground(m_worker, [tokensFile] { return keyInTokensFile(tokensFile); });
}

QCoro::Task<std::string> Client::ask(std::string system, std::string user)
{
    const QPointer<Client> self(this);
    const int cancellations = m_cancellations;
    const auto chosenModel = model().toStdString();
    const auto key = co_await apiKey();
    checkAlive(self, cancellations);
    if (!key)
        throw AppError("No OpenRouter key. Paste yours in Settings (⌘,).");
    const auto secret = key->toUtf8();
    if (std::ranges::any_of(secret, [](char c) { return static_cast<unsigned char>(c) < ' '; }))
        throw AppError("The OpenRouter key has a line break or a tab in it. Paste it again in Settings (⌘,).");
    // Not within the call below: GCC 12 destroys such a value twice in a coroutine.
    const Question question{ .body = QByteArray::fromStdString(chatRequest(chosenModel, system, user)),
        .largestAnswer = largestAnswer };
    const auto route = co_await findRoute(m_options.host, m_options.longestSilence, *this);
    checkAlive(self, cancellations);
    auto answer = co_await post(requestWith(secret), route, question, *this);
    co_return bodyOf(std::move(answer), secret);
}

/// No cookies, no passwords, and no way to anywhere else: nobody else gets the key and the words.
QNetworkRequest Client::requestWith(const QByteArray& key) const
{
    QUrl url = m_options.host;
    url.setPath(u"/api/v1/chat/completions"_s);
    QNetworkRequest request(url);
    request.setTransferTimeout(static_cast<int>(m_options.longestSilence.count()));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setRawHeader("Authorization", "Bearer " + key);
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    request.setRawHeader("X-Title", "Vantry");
    return request;
}

void Client::cancel()
{
    ++m_cancellations;
    m_keychain.stopReading();
    abortAll(*this);
}

/// Throws when it is gone, or was cancelled since.
void Client::checkAlive(const QPointer<Client>& client, int cancellations)
{
    if (!client || client->m_cancellations != cancellations)
        throw AppError("The request was cancelled.");
}

} // namespace vantry::AI
