import QtQuick
import Vantry

/// A key, or several that are pressed together, as they look on the keyboard.
Rectangle {
    id: keycap

    required property string keys

    implicitWidth: label.implicitWidth + Theme.space12
    implicitHeight: label.implicitHeight + Theme.space8
    radius: Theme.radius5
    color: Theme.keycap
    border.color: Theme.keycapLine
    Accessible.role: Accessible.StaticText
    Accessible.name: keys

    Text {
        id: label

        anchors.centerIn: parent
        text: keycap.keys
        color: Theme.keycapInk
        font { family: Theme.monospaced; pixelSize: Theme.labelSize }
    }
}
