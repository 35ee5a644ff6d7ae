#include "model/EditingCommands.h"

#include "capture/Recorder.h"
#include "model/AppModel.h"
#include "project/Edits.h"
#include "project/Timeline.h"

namespace vantry {

namespace {

Corner after(Corner corner)
{
    switch (corner) {
    case Corner::topLeft:
        return Corner::topRight;
    case Corner::topRight:
        return Corner::bottomRight;
    case Corner::bottomRight:
        return Corner::bottomLeft;
    case Corner::bottomLeft:
        break;
    }
    return Corner::topLeft;
}

} // namespace

EditingCommands::EditingCommands(AppModel& model, Recorder& recorder)
    : m_model(model)
    , m_recorder(recorder)
{
}

void EditingCommands::setLayout(std::optional<Layout> layout, std::optional<Corner> corner)
{
    if (m_model.phase() == Phase::setup() || !m_model.project()) {
        if (layout)
            m_model.settings()->setSetupLayout(*layout);
        if (corner)
            m_model.settings()->setSetupCorner(*corner);
        return;
    }
    // A preview is shown while editing only.
    const Rebuild rebuild = m_model.phase() == Phase::editing() ? Rebuild::Yes : Rebuild::No;
    const double time = now();
    m_model.edit(rebuild, [&](Project& project) {
        const LayoutEvent current = layoutInForce(project, time);
        vantry::setLayout(project, layout.value_or(current.layout), corner.value_or(current.corner), time);
    });
}

void EditingCommands::nextCorner()
{
    setLayout(std::nullopt, after(liveLayout().corner));
}

LayoutEvent EditingCommands::liveLayout() const
{
    const auto& project = m_model.project();
    if (project && !project->layouts.empty())
        return project->layouts.back();
    return { .layout = m_model.settings()->setupLayout(), .corner = m_model.settings()->setupCorner() };
}

double EditingCommands::now() const
{
    if (m_model.phase() == Phase::editing())
        return m_model.playhead();
    const auto& project = m_model.project();
    return (project ? totalLength(*project) : 0) + m_recorder.elapsed();
}

} // namespace vantry
