import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Controls.impl
import QtQuick.Layouts

/// A choice of one out of a few, side by side.
Control {
    id: segments

    /// Each with `value`, `icon`, `name` for whoever cannot see, and a `label` or none.
    required property var options
    required property int value

    signal chosen(int value)

    padding: 3
    opacity: enabled ? 1 : 0.45

    background: Rectangle {
        radius: 8
        color: Theme.well
        border.color: Theme.line
    }

    contentItem: RowLayout {
        spacing: 2

        Repeater {
            model: segments.options

            KeyButton {
                id: segment

                required property var modelData
                readonly property bool selected: modelData.value === segments.value
                readonly property color ink: selected ? Theme.selectedInk : hovered ? Theme.ink : Theme.inkSecondary

                padding: 6
                horizontalPadding: 9
                text: modelData.label ?? ""
                checkable: false
                Accessible.name: modelData.name
                Accessible.role: Accessible.RadioButton
                Accessible.checked: selected
                onClicked: segments.chosen(modelData.value)

                contentItem: IconLabel {
                    text: segment.text
                    spacing: 6
                    color: segment.ink
                    font.pixelSize: Theme.fontSize
                    icon { source: segment.modelData.icon; color: segment.ink; width: 15; height: 15 }
                }

                background: Rectangle {
                    radius: 6
                    color: segment.selected ? Theme.selected : segment.down ? Theme.raised : "transparent"

                    Behavior on color { ColorAnimation { duration: 180; easing.type: Easing.OutQuad } }

                    FocusRing { visible: segment.visualFocus }
                }
            }
        }
    }
}
