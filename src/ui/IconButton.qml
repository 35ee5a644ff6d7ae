import QtQuick
import QtQuick.Controls.impl

/// A small square button without a label.
KeyButton {
    id: button

    padding: 0
    implicitWidth: 32
    implicitHeight: 32

    contentItem: Item {
        IconImage {
            anchors.centerIn: parent
            source: button.icon.source
            color: button.hovered ? Theme.ink : Theme.inkSecondary
            sourceSize { width: 16; height: 16 }
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: button.down || button.hovered ? Theme.raised : "transparent"
        border.color: Theme.line

        FocusRing { visible: button.visualFocus }
    }
}
