#pragma once

#include <QFuture>
#include <QPromise>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace vantry {

/// The application's name among all others, for the key ring of the desktop.
inline constexpr auto bundleIdentifier = "app.vantry";

/// The user's OpenRouter key in the key ring of the desktop, the only place where it is kept. Whatever goes wrong there counts as
/// no key, and nothing is kept elsewhere instead. Belongs to the main thread, which never waits for it; needs an event loop.
class Keychain {
public:
    struct Options {
        QString service = QString::fromLatin1(bundleIdentifier);
        std::chrono::milliseconds longestRead{ 2000 }; ///< But for a locked key ring, which asks the user.
    };

    Keychain();
    explicit Keychain(Options options);

    /// The stored key. Nothing when there is none, or when the key ring does not give it in time. A locked key ring asks the user,
    /// for whom it is waited as long as it takes.
    QFuture<std::optional<QString>> openRouterKey();

    /// Ends all waiting for a key: there is none then.
    void stopReading();

    /// Replaces the key, without white space around it; nothing or blank text removes it. Finished when the key ring is done with
    /// it, whatever came of it, which may take as long as the user lets it wait. Reads and writes keep their order.
    QFuture<void> setOpenRouterKey(const std::optional<QString>& key);

private:
    using Reading = std::shared_ptr<QPromise<std::optional<QString>>>;
    static void finish(const Reading& reading, const std::optional<QString>& key);

    const Options m_options;
    std::vector<Reading> m_readings; ///< Under way, and those that have ended since the last one began.
};

} // namespace vantry
