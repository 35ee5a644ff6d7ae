#pragma once

#include "ai/Keychain.h"

#include <QString>
#include <QUrl>

#include <chrono>

namespace vantry::AI {

inline constexpr QLatin1StringView defaultModel("~deepseek/deepseek-flash-latest");
inline constexpr QLatin1StringView defaultTokensPath("~/Dropbox/kitbag/tokens");

/// What the user chose. Empty means the default.
struct Choices {
    QString model;
    QString tokensPath; ///< May begin with "~/".
};

/// What the client works with; other than these in tests only.
struct Options {
    QUrl host{ QStringLiteral("https://openrouter.ai") };
    std::chrono::milliseconds longestSilence{ 120'000 }; ///< Of the server, while it is waited for.
    Keychain::Options keychain{};
};

} // namespace vantry::AI
