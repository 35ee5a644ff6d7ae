#pragma once

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
    /// Both outlive the flow.
    OverlayFlow(AppModel& model, AI::Client& ai);

    /// Adds an overlay as the instruction wants it, and says whether there is one now; why not stands in the model's texts. It
    /// starts where the playhead is when this is called.
    QCoro::Task<bool> suggest(QString instruction);

private:
    AppModel& m_model;
    AI::Client& m_ai;
};

} // namespace vantry
