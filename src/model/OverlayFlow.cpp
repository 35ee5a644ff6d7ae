#include "model/OverlayFlow.h"

#include "ai/OverlayReply.h"
#include "model/AskAI.h"

namespace vantry {

using namespace Qt::StringLiterals;

OverlayFlow::OverlayFlow(AppModel& model, AI::Client& ai, Notice& notice)
    : m_model(model)
    , m_ai(ai)
    , m_notice(notice)
{
}

QCoro::Task<bool> OverlayFlow::suggest(QString instruction)
{
    if (!m_model.project())
        co_return false;
    const QPointer<AppModel> alive(&m_model);
    const double time = m_model.playhead();
    const std::string wanted = instruction.toStdString();
    m_model.setBusy(u"Asking AI…"_s);
    const auto message = AI::overlayUserMessage(wanted, time, *m_model.project());
    const auto reply = co_await askAI<AI::OverlayReply>(m_model, m_ai, m_notice, AI::overlaySystemPrompt(), message);
    if (!alive)
        co_return false;
    if (reply)
        m_model.edit(Rebuild::Yes, [&](Project& project) { project.overlays.push_back(AI::makeOverlay(*reply, wanted, time)); });
    m_model.setBusy(std::nullopt);
    co_return reply.has_value();
}

} // namespace vantry
