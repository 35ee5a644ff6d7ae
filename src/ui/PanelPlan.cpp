#include "ui/PanelPlan.h"

#include "model/ChangeTo.h"

#include <QGuiApplication>
#include <QScreen>

namespace vantry {

namespace {

/// The screen as the toolkit knows it. Both name the same corner; the toolkit's sizes are scaled.
QScreen* screenOf(const AppModel& model)
{
    if (const auto display = model.screen()) {
        for (QScreen* screen : QGuiApplication::screens()) {
            if (screen->geometry().topLeft() == QPoint(display->x, display->y))
                return screen;
        }
    }
    return QGuiApplication::primaryScreen();
}

bool isUnderWay(const Phase& phase)
{
    return phase != Phase::setup() && phase != Phase::editing();
}

} // namespace

void PanelPlan::setModel(AppModel* model)
{
    if (!changeTo(m_model, model))
        return;
    connect(model, &AppModel::phaseChanged, this, &PanelPlan::update);
    connect(model, &AppModel::liveLayoutChanged, this, &PanelPlan::updateBubble);
    connect(model->settings(), &Settings::panelFoldedChanged, this, &PanelPlan::updateHudPlace);
    // The camera may come and go meanwhile.
    connect(model, &AppModel::liveTimeChanged, this, &PanelPlan::updateBubble);
    Q_EMIT modelChanged();
    update();
}

void PanelPlan::update()
{
    const QScreen* screen = isUnderWay(m_model->phase()) ? screenOf(*m_model) : nullptr;
    if (screen && !m_hudShown) {
        const auto display = m_model->screen();
        m_display = display ? display->id : 0;
        m_screen = screen->geometry();
        m_area = screen->availableGeometry();
        updateHudPlace();
    }
    if (changeTo(m_hudShown, screen != nullptr))
        Q_EMIT hudShownChanged();
    updateBubble();
}

void PanelPlan::updateHudPlace()
{
    const Settings& settings = *m_model->settings();
    m_hudPlace = vantry::hudPlace(m_area, hudSize(m_area, settings.panelFolded()), settings.panelPlace(m_display));
    Q_EMIT hudPlaceChanged();
}

void PanelPlan::keepHudPlace(QPoint place)
{
    m_model->settings()->setPanelPlace(m_display, hudCorner(m_area, QRect(place, m_hudPlace.size())));
    updateHudPlace();
}

void PanelPlan::updateBubble()
{
    // While the clip is saved nothing moves any more.
    if (m_hudShown && m_model->phase() == Phase::saving())
        return;
    const LayoutEvent live = m_model->liveLayout();
    const bool shown = m_hudShown && live.layout != Layout::screen && m_model->hasCamera();
    if (shown && changeTo(m_bubblePlace, vantry::bubblePlace(m_screen, live.layout, live.corner, m_model->bubbleSize())))
        Q_EMIT bubblePlaceChanged();
    if (changeTo(m_bubbleShown, shown))
        Q_EMIT bubbleShownChanged();
}

} // namespace vantry
