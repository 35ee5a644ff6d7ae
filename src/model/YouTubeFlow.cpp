#include "model/YouTubeFlow.h"

#include "ai/YouTubeReply.h"
#include "model/AskAI.h"

namespace vantry {

using namespace Qt::StringLiterals;

YouTubeFlow::YouTubeFlow(AppModel& model, AI::Client& ai, Notice& notice, Transcribe transcribe)
    : m_model(model)
    , m_ai(ai)
    , m_notice(notice)
    , m_transcribe(std::move(transcribe))
{
}

QCoro::Task<> YouTubeFlow::generate()
{
    const QPointer<AppModel> alive(&m_model);
    const auto folder = m_model.folder();
    m_model.setBusy(u"Transcribing…"_s);
    co_await m_transcribe();
    if (!alive)
        co_return;
    if (m_model.project() && m_model.folder() == folder)
        co_await describeProject();
    if (alive)
        m_model.setBusy(std::nullopt);
}

QCoro::Task<> YouTubeFlow::describeProject()
{
    const auto message = AI::youTubeUserMessage(*m_model.project());
    if (!message) {
        m_model.setAlert(u"No speech found to describe. Check the language in Settings."_s);
        co_return;
    }
    m_model.setBusy(u"Writing title, description, tags & chapters…"_s);
    const auto reply = co_await askAI<AI::YouTubeReply>(m_model, m_ai, m_notice, AI::youTubeSystemPrompt(), *message);
    if (reply)
        m_model.edit(Rebuild::No, [&](Project& project) { project.youtube = AI::makeYouTubeInfo(*reply, project); });
}

} // namespace vantry
