pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// A choice of one out of a few, side by side. One stop for the keyboard, with the arrow keys inside.
Control {
    id: segments

    /// Each with `value`, `symbol`, `name` for whoever cannot see, and a `label` or none.
    required property var options
    required property var value

    /// What is chosen here.
    required property string name

    signal chosen(var value)

    padding: 3
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : Theme.disabledSegments
    Accessible.role: Accessible.Grouping
    Accessible.name: name
    Accessible.focusable: true
    Keys.onLeftPressed: move(-1)
    Keys.onRightPressed: move(1)

    function move(by) {
        const next = options.findIndex(option => option.value === value) + by;
        if (next >= 0 && next < options.length)
            chosen(options[next].value);
    }

    background: Rectangle {
        radius: Theme.radius8
        color: Theme.selectorWell
        border.color: Theme.line

        FocusRing { visible: segments.visualFocus }
    }

    contentItem: RowLayout {
        spacing: 2

        Repeater {
            model: segments.options

            Segment {
                required property var modelData

                Layout.fillWidth: true
                option: modelData
                selected: modelData.value === segments.value
                onClicked: segments.chosen(modelData.value)
            }
        }
    }
}
