import QtQuick
import QtQuick.Controls.impl

/// The place of the camera's picture.
Rectangle {
    radius: width / 2
    border { color: Theme.ink; width: 3 }
    gradient: Gradient {
        GradientStop { position: 0; color: Theme.raised }
        GradientStop { position: 1; color: Theme.canvas }
    }

    IconImage {
        anchors.centerIn: parent
        source: "qrc:/icons/user-round.svg"
        color: Theme.inkSecondary
        sourceSize { width: parent.width * 0.4; height: parent.height * 0.4 }
    }
}
