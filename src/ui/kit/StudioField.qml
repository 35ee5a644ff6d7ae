import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// A line of text of the common style.
TextField {
    id: field

    padding: 9
    color: Theme.ink
    selectionColor: Theme.accentBlue
    selectedTextColor: Theme.canvas
    selectByMouse: true
    font.pixelSize: Theme.fontSize

    background: Rectangle {
        radius: Theme.radius
        color: Theme.well
        border.color: field.activeFocus ? Theme.accentBlue : Theme.line
    }
}
