import QtQuick
import QtQuick.Controls.impl
import Vantry

/// The live camera where it is in the video. It goes to a new place as smoothly as there.
Rectangle {
    id: camera

    required property CameraMirror mirror
    required property rect place
    required property real shown

    /// The width of the ring around a bubble.
    required property real ring
    readonly property bool coversAll: shown === 1 && radius === 0 && image.isLive

    x: place.x
    y: place.y
    width: place.width
    height: place.height
    opacity: shown
    visible: opacity > 0
    color: Theme.raised

    Behavior on x { Motion { } }
    Behavior on y { Motion { } }
    Behavior on width { Motion { } }
    Behavior on height { Motion { } }
    Behavior on radius { Motion { } }
    Behavior on opacity { Motion { } }

    component Motion: NumberAnimation {
        duration: Theme.layoutMotion
        easing.type: Easing.InOutQuad
    }

    IconImage {
        anchors.centerIn: parent
        visible: !image.isLive
        source: "qrc:/icons/user-round.svg"
        color: Theme.inkSecondary
        sourceSize { width: camera.height * 0.4; height: camera.height * 0.4 }
    }

    CameraImage {
        id: image

        anchors.fill: parent
        mirror: camera.mirror
        radius: camera.radius
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Camera")
    }

    Rectangle {
        anchors.fill: parent
        radius: camera.radius
        color: "transparent"
        border { color: Theme.ring; width: camera.ring }
    }
}
