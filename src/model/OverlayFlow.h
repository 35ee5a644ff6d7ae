#pragma once

#include "model/Notices.h"

#include <QCoroTask>
#include <QString>

namespace vantry {

class AppModel;

namespace AI {
class Client;
}

/// Lets the AI design overlays. Belongs to the main thread.
class OverlayFlow {
public:
    /// All of them outlive the flow.
    OverlayFlow(AppModel& model, AI::Client& ai, Notice& notice);

    /// Adds an overlay as the instruction wants it, and says whether there is one now; why not stands in the model's texts. It
    /// starts where the playhead is when this is called.
    QCoro::Task<bool> suggest(QString instruction);

private:
    AppModel& m_model;
    AI::Client& m_ai;
    Notice& m_notice;
};

} // namespace vantry
