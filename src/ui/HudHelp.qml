pragma ComponentBehavior: Bound

import QtQuick

/// Lets a tip say what its parent does while the pointer rests on it.
Item {
    id: area

    required property HudTip tip
    required property string text

    anchors.fill: parent

    HoverHandler {
        id: hover

        onHoveredChanged: if (!hovered) area.tip?.hide(area)
    }

    Connections {
        target: area.Window.window

        function onPressed() {
            rest.stop();
            area.tip.hide(area);
        }
    }

    Timer {
        id: rest

        interval: Theme.helpDelay
        running: hover.hovered && area.text !== ""
        onTriggered: area.tip.show(area, area.text)
    }

    Component.onDestruction: tip?.hide(area)
}
