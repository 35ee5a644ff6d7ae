#pragma once

#include <QFuture>
#include <QString>

#include <chrono>
#include <optional>

namespace vantry {

/// The application's name among all others, for the key ring of the desktop.
inline constexpr auto bundleIdentifier = "app.vantry";

/// The user's OpenRouter key in the key ring of the desktop, the only place where it is kept. Whatever goes wrong there counts as
/// no key, and nothing is kept elsewhere instead. Belongs to the main thread, which never waits for it; needs an event loop.
class Keychain {
public:
    struct Options {
        QString service = QString::fromLatin1(bundleIdentifier);
        std::chrono::milliseconds longestRead{ 2000 }; ///< A locked key ring asks the user, who may be away.
    };

    Keychain();
    explicit Keychain(Options options);

    /// The stored key. Nothing when there is none, or when the key ring does not give it in time.
    QFuture<std::optional<QString>> openRouterKey() const;

    /// Replaces the key, without white space around it; nothing or blank text removes it. Finished when the key ring is done with
    /// it, whatever came of it, which may take as long as the user lets it wait. Reads and writes keep their order.
    QFuture<void> setOpenRouterKey(const std::optional<QString>& key);

private:
    const Options m_options;
};

} // namespace vantry
