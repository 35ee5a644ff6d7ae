#pragma once

#include "model/AppModel.h"

#include <QObject>
#include <QRect>
#include <qqmlregistration.h>

namespace vantry {

/// When and where the floating panels are shown: from the countdown until the clip is saved, on the screen that is recorded.
class PanelPlan : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vantry::AppModel* model READ model WRITE setModel NOTIFY modelChanged REQUIRED)

    // A panel's place is told before the panel is shown. While it is hidden it stays where it was.
    Q_PROPERTY(QRect hudPlace READ hudPlace NOTIFY hudPlaceChanged)
    Q_PROPERTY(bool hudShown READ hudShown NOTIFY hudShownChanged)
    Q_PROPERTY(QRect bubblePlace READ bubblePlace NOTIFY bubblePlaceChanged)
    Q_PROPERTY(bool bubbleShown READ bubbleShown NOTIFY bubbleShownChanged)

public:
    AppModel* model() const { return m_model; }

    /// The model outlives the plan.
    void setModel(AppModel* model);

    bool hudShown() const { return m_hudShown; }
    QRect hudPlace() const { return m_hudPlace; }
    bool bubbleShown() const { return m_bubbleShown; }
    QRect bubblePlace() const { return m_bubblePlace; }

Q_SIGNALS:
    void modelChanged();
    void hudPlaceChanged();
    void hudShownChanged();
    void bubblePlaceChanged();
    void bubbleShownChanged();

private:
    void update();
    void updateBubble();

    AppModel* m_model = nullptr;
    bool m_hudShown = false;
    QRect m_screen;
    QRect m_hudPlace;
    bool m_bubbleShown = false;
    QRect m_bubblePlace{ 0, 0, 200, 200 };
};

} // namespace vantry
