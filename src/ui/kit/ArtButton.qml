import QtQuick
import Vantry

/// A picture to press: it comes a little nearer to the pointer, and goes back when it is pressed.
KeyButton {
    id: button

    required property url art
    property bool lit: hovered

    padding: 0
    scale: down ? 0.96 : lit ? 1.03 : 1
    opacity: enabled ? 1 : Theme.disabled

    Behavior on scale {
        NumberAnimation { duration: button.down ? Theme.pressMotion : Theme.hoverMotion; easing.type: Easing.OutQuad }
    }

    background: Image {
        source: button.art
        sourceSize { width: button.width; height: button.height }

        FocusRing {
            visible: button.visualFocus
            radius: width / 2
        }
    }
}
