import QtQuick

/// The big red one.
KeyButton {
    id: button

    text: "Record"
    implicitWidth: 132
    implicitHeight: 132
    scale: down ? 0.96 : hovered ? 1.03 : 1

    Behavior on scale { NumberAnimation { duration: 120; easing.type: Easing.OutQuad } }

    background: Rectangle {
        radius: width / 2
        color: "#2c1a22"
        border { color: button.visualFocus ? Theme.accent : "#83424f"; width: button.visualFocus ? 3 : 1 }

        Rectangle {
            anchors { fill: parent; margins: 12 }
            radius: width / 2
            gradient: Gradient {
                GradientStop { position: 0; color: "#ff8090" }
                GradientStop { position: 1; color: "#e8465e" }
            }
        }
    }

    contentItem: Text {
        text: button.text
        color: "#2a0a10"
        font { pixelSize: 17; weight: Font.DemiBold }
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
}
