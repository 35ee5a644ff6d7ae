#include "ai/Keychain.h"

#include "platform/KeyRing.h"

#include <QPromise>
#include <QStringDecoder>
#include <QTimer>
#include <qt6keychain/keychain.h>

#include <memory>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

using Key = std::optional<QString>;

const auto account = u"openrouter"_s;

Key keyIn(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return text.isEmpty() || decoder.hasError() ? std::nullopt : Key(text);
}

/// Lets a job run, which deletes itself. It is never deleted before it is done: the key ring's answer would find nobody. Jobs run
/// one after the other.
template <typename Finished>
void run(QKeychain::Job* job, Finished finished)
{
    job->setKey(account);
    QObject::connect(job, &QKeychain::Job::finished, job, std::move(finished));
    job->start();
}

} // namespace

Keychain::Keychain()
    : Keychain(Options())
{
}

Keychain::Keychain(Options options)
    : m_options(std::move(options))
{
}

QFuture<Key> Keychain::openRouterKey()
{
    std::erase_if(m_readings, [](const Reading& reading) { return reading->future().isFinished(); });
    const auto reading = m_readings.emplace_back(std::make_shared<QPromise<Key>>());
    reading->start();
    auto* job = new QKeychain::ReadPasswordJob(m_options.service);
    run(job, [reading, job] { finish(reading, job->error() == QKeychain::NoError ? keyIn(job->binaryData()) : std::nullopt); });
    auto* deadline = new QTimer(job);
    QObject::connect(deadline, &QTimer::timeout, job, [reading] { finish(reading, std::nullopt); });
    deadline->setSingleShot(true);
    deadline->start(m_options.longestRead);
    // Whoever unlocks it may have to look for the password.
    askWhetherKeyRingIsLocked(deadline, [deadline](bool isLocked) {
        if (isLocked)
            deadline->stop();
    });
    return reading->future();
}

/// The first answer counts.
void Keychain::finish(const Reading& reading, const Key& key)
{
    reading->addResult(key);
    reading->finish();
}

void Keychain::stopReading()
{
    for (const Reading& reading : std::exchange(m_readings, {}))
        finish(reading, std::nullopt);
}

QFuture<void> Keychain::setOpenRouterKey(const Key& key)
{
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    const auto finish = [promise] { promise->finish(); };
    const QString text = key.value_or(QString()).trimmed();
    auto* removal = new QKeychain::DeletePasswordJob(m_options.service);
    if (text.isEmpty()) {
        run(removal, finish);
    } else {
        auto* writing = new QKeychain::WritePasswordJob(m_options.service);
        writing->setTextData(text);
        run(removal, [] {});
        run(writing, finish);
    }
    return promise->future();
}

} // namespace vantry
