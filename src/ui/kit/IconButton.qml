import QtQuick
import QtQuick.Controls.impl
import Vantry

/// A small square button without a label, whose name says what it does.
KeyButton {
    id: button

    required property string name
    property bool lit: hovered || down

    padding: 0
    implicitWidth: Theme.panelTarget
    implicitHeight: Theme.panelTarget
    opacity: enabled ? 1 : Theme.disabled
    Accessible.name: name

    contentItem: Item {
        IconImage {
            anchors.centerIn: parent
            source: button.icon.source
            color: button.lit ? Theme.ink : Theme.inkSecondary
            sourceSize { width: Theme.icon; height: Theme.icon }
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: button.lit ? Theme.raised : "transparent"
        border.color: Theme.line

        FocusRing { visible: button.visualFocus }
    }
}
