import QtQuick
import QtQuick.Controls.impl
import Vantry

/// One option of a selector.
KeyButton {
    id: segment

    required property var option
    required property bool selected
    readonly property color ink: selected ? Theme.selectedInk : hovered && enabled ? Theme.ink : Theme.inkSecondary

    padding: 6
    horizontalPadding: 9
    implicitHeight: Theme.target
    focusPolicy: Qt.NoFocus
    text: option.label ?? ""
    help: text === option.name ? "" : option.name
    Accessible.name: option.name
    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: selected
    Accessible.selected: selected

    contentItem: IconLabel {
        text: segment.text
        spacing: 6
        color: segment.ink
        font.pixelSize: Theme.fontSize
        icon { source: segment.option.symbol ?? ""; color: segment.ink; width: Theme.icon; height: Theme.icon }
    }

    background: Rectangle {
        radius: Theme.radius5
        color: segment.selected ? Theme.selected : segment.down ? Theme.raised : "transparent"

        Behavior on color { ColorAnimation { duration: Theme.choiceMotion; easing.type: Easing.OutQuad } }
    }
}
