#pragma once

#include "model/Notices.h"

#include <QCoroTask>

#include <functional>

namespace vantry {

class AppModel;

namespace AI {
class Client;
}

/// Lets the AI write what a project's video is published with. Belongs to the main thread.
class YouTubeFlow {
public:
    /// Makes the transcripts that the open project lacks, and never throws.
    using Transcribe = std::function<QCoro::Task<>()>;

    /// They outlive the flow.
    YouTubeFlow(AppModel& model, AI::Client& ai, Notice& notice, Transcribe transcribe);

    /// Replaces the project's title, title ideas, description and tags. Where nothing comes of it, the model's texts say why.
    QCoro::Task<> generate();

private:
    QCoro::Task<> describeProject();

    AppModel& m_model;
    AI::Client& m_ai;
    Notice& m_notice;
    const Transcribe m_transcribe;
};

} // namespace vantry
