#pragma once

#include "ai/Chat.h"
#include "ai/Keychain.h"
#include "ai/Options.h"
#include "base/Background.h"
#include "base/Worker.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QNetworkRequest>
#include <QObject>
#include <QPointer>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace vantry::AI {

/// Asks the AI service, with the user's own key. Every call is one request and one answer; nothing is kept in between. Belongs to
/// the main thread, which never waits: the network has a thread of its own, and files and answers are read on another one.
/// Destroying it ends what is under way, and whoever waits for that gets an AppError.
class Client : public QObject {
public:
    /// `choices` is asked at the start of each call.
    explicit Client(std::function<Choices()> choices, Options options = {});
    ~Client() override;

    /// The one that is asked.
    QString model() const;

    /// The key of the key ring, else the one of the tokens file.
    QCoro::Task<std::optional<QString>> apiKey();

    /// Ends all questions that wait, for the key ring or for the service: those who asked get an AppError.
    void cancel();

    /// How often that was done.
    int cancellations() const { return m_cancellations; }

    /// The `Reply` in the JSON object that the model answers with. Throws AppError; its text never contains the key.
    template <typename Reply>
    QCoro::Task<Reply> json(std::string system, std::string user);

private:
    QCoro::Task<std::string> ask(std::string system, std::string user);
    QNetworkRequest requestWith(const QByteArray& key) const;
    QFuture<std::optional<QString>> keyIn(const std::filesystem::path& tokensFile);
    template <typename Reply>
    QFuture<Reply> decoded(const std::string& body);
    static void checkAlive(const QPointer<Client>& client, int cancellations);

    const std::function<Choices()> m_choices;
    const Options m_options;
    Keychain m_keychain;
    int m_cancellations = 0;
    Worker m_worker{ "vantry.ai" };
};

template <typename Reply>
QCoro::Task<Reply> Client::json(std::string system, std::string user)
{
    const QPointer<Client> self(this);
    const int cancellations = m_cancellations;
    const auto body = co_await ask(std::move(system), std::move(user));
    checkAlive(self, cancellations);
    co_return co_await decoded<Reply>(body);
}

template <typename Reply>
QFuture<Reply> Client::decoded(const std::string& body)
{
    return inBackground(m_worker, [body] { return decodeAnswer(jsonObjectIn(body), Reply::decode); });
}

} // namespace vantry::AI
