import QtQuick
import QtQuick.Controls.Basic

/// What all buttons have in common: the Return key presses them as the space bar does, but not over and over while it is held.
AbstractButton {
    padding: 8
    hoverEnabled: true
    Accessible.name: text
    Keys.onReturnPressed: event => press(event)
    Keys.onEnterPressed: event => press(event)

    function press(event) {
        if (!event.isAutoRepeat)
            clicked();
    }
}
