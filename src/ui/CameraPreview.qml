import QtQuick
import QtQuick.Controls.impl
import Vantry

/// The live camera, round unless it is said otherwise, or its place while it delivers nothing.
Rectangle {
    id: frame

    required property CameraMirror mirror
    property alias interval: image.interval
    readonly property bool isLive: image.isLive

    /// The width of the line around it.
    property real ring: 3
    property color ringColor: Theme.ink

    radius: width / 2
    gradient: Gradient {
        GradientStop { position: 0; color: Theme.raised }
        GradientStop { position: 1; color: Theme.canvas }
    }

    IconImage {
        anchors.centerIn: parent
        visible: !frame.isLive
        source: "qrc:/icons/user-round.svg"
        color: Theme.inkSecondary
        sourceSize { width: frame.height * 0.4; height: frame.height * 0.4 }
    }

    CameraImage {
        id: image

        anchors.fill: parent
        mirror: frame.mirror
        radius: frame.radius
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Camera")
    }

    Rectangle {
        anchors.fill: parent
        radius: frame.radius
        color: "transparent"
        border { color: frame.ringColor; width: frame.ring }
    }
}
