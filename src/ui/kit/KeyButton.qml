pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// What all buttons have in common: a help text, and that the Return key presses them as the space bar does, but not over and over
/// while it is held.
AbstractButton {
    id: button

    /// What pressing it does, for who stays on it, and for screen readers.
    property string help: ""

    padding: Theme.space8
    hoverEnabled: true
    Accessible.name: text
    Accessible.description: help
    Keys.onReturnPressed: event => press(event)
    Keys.onEnterPressed: event => press(event)

    HoverHandler {
        enabled: button.enabled
        cursorShape: Qt.PointingHandCursor
    }

    HelpTip {
        target: button
        text: button.help
        wanted: button.hovered || button.visualFocus
    }

    function press(event) {
        if (!event.isAutoRepeat)
            clicked();
    }
}
