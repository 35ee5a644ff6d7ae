#pragma once

#include "ai/Client.h"
#include "model/AppModel.h"
#include "model/Coroutines.h"

#include <QPointer>

#include <optional>
#include <string>
#include <utility>

namespace vantry {

/// The AI's reply about the open project. Nothing when there is none, or when it came after another project was opened; the model's
/// alert, or this notice, says why. Nothing, and nobody is told, when the model is gone meanwhile.
template <typename Reply>
QCoro::Task<std::optional<Reply>> askAI(AppModel& model, AI::Client& ai, Notice& notice, std::string system, std::string user)
{
    notice.clear();
    const QPointer<AppModel> alive(&model);
    const auto folder = model.folder();
    const int cancellations = ai.cancellations();
    std::optional<Reply> reply;
    QString failure;
    try {
        reply = co_await ai.json<Reply>(std::move(system), std::move(user));
    } catch (const std::exception& error) {
        failure = describe(error);
    }
    if (!alive)
        co_return std::nullopt;
    if (!reply) {
        if (ai.cancellations() == cancellations) // Whoever cancels knows.
            model.setAlert(failure);
    } else if (model.folder() != folder) {
        notice.tell(QStringLiteral("AI result dropped: you switched recordings"));
        reply.reset();
    }
    co_return reply;
}

} // namespace vantry
