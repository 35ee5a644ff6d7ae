#pragma once

#include "model/AppModel.h"
#include "ui/PanelPlaces.h"

#include <QObject>
#include <QRect>

#include <cstdint>
#include <qqmlregistration.h>

namespace vantry {

/// When and where the floating panels are shown: from the countdown until the clip is saved, on the screen that is recorded.
class PanelPlan : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vantry::AppModel* model READ model WRITE setModel NOTIFY modelChanged REQUIRED)

    // A panel's place is told before the panel is shown. While it is hidden it stays where it was.
    Q_PROPERTY(QRect hudPlace READ hudPlace NOTIFY hudPlaceChanged)
    Q_PROPERTY(QRect area READ area NOTIFY hudPlaceChanged) ///< What docks and bars leave free of the screen.
    Q_PROPERTY(bool hudShown READ hudShown NOTIFY hudShownChanged)
    Q_PROPERTY(QRect bubblePlace READ bubblePlace NOTIFY bubblePlaceChanged)
    Q_PROPERTY(bool bubbleShown READ bubbleShown NOTIFY bubbleShownChanged)

public:
    AppModel* model() const { return m_model; }

    /// The model outlives the plan.
    void setModel(AppModel* model);

    bool hudShown() const { return m_hudShown; }
    QRect hudPlace() const { return m_hudPlace; }
    QRect area() const { return m_area; }

    /// Remembers where the user has put the controls on this screen.
    Q_INVOKABLE void keepHudPlace(QPoint place);

    /// Where something of a size finds room at a place of the screen: below it, else above.
    Q_INVOKABLE QRect beside(const QRect& place, QSize size) const { return besidePlace(m_area, place, size); }

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
    void updateHudPlace();
    void updateBubble();

    AppModel* m_model = nullptr;
    bool m_hudShown = false;
    std::uint32_t m_display = 0; ///< 0 where nobody knows the displays.
    QRect m_screen;
    QRect m_area;
    QRect m_hudPlace;
    bool m_bubbleShown = false;
    QRect m_bubblePlace{ 0, 0, 200, 200 };
};

} // namespace vantry
