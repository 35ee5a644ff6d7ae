import QtQml
import Vantry

/// The windows that float over the screen while a clip is recorded.
QtObject {
    id: panels

    required property AppModel model

    readonly property PanelPlan plan: PanelPlan { model: panels.model }

    readonly property HudTip tip: HudTip { plan: panels.plan }

    readonly property HudPanel hud: HudPanel {
        model: panels.model
        plan: panels.plan
        tip: panels.tip
    }

    readonly property NoticeStrip notices: NoticeStrip {
        model: panels.model
        plan: panels.plan
        panel: panels.hud
        tip: panels.tip
    }

    readonly property BubblePanel bubble: BubblePanel {
        mirror: panels.model.devices.mirror
        shown: panels.plan.bubbleShown
        place: panels.plan.bubblePlace
    }
}
