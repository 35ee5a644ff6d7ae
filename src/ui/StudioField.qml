import QtQuick
import QtQuick.Controls.Basic

/// A line of text of the common style.
TextField {
    id: field

    padding: 9
    color: Theme.ink
    selectionColor: Theme.accent
    selectedTextColor: Theme.canvas
    selectByMouse: true
    font.pixelSize: Theme.fontSize

    background: Rectangle {
        radius: Theme.radius
        color: Theme.panel
        border.color: field.activeFocus ? Theme.accent : Theme.line
    }
}
