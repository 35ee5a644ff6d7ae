import QtQml
import Vantry

/// The windows that float over the screen while a clip is recorded.
QtObject {
    id: panels

    required property AppModel model

    readonly property PanelPlan plan: PanelPlan { model: panels.model }

    readonly property HudPanel hud: HudPanel {
        model: panels.model
        shown: panels.plan.hudShown
        place: panels.plan.hudPlace
    }

    readonly property BubblePanel bubble: BubblePanel {
        mirror: panels.model.devices.mirror
        shown: panels.plan.bubbleShown
        place: panels.plan.bubblePlace
    }
}
