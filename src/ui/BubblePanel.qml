import QtQuick
import Vantry

/// What the camera sees, round, where the bubble is in the video. It goes to a new place smoothly while it can be seen.
FloatingPanel {
    id: panel

    required property CameraMirror mirror
    required property bool shown
    required property rect place
    property rect current: place

    title: qsTr("Vantry camera")
    width: 200
    height: 200
    cornerRadius: 10000
    edge: 2
    visible: shown

    onCurrentChanged: setGeometry(Math.round(current.x), Math.round(current.y), Math.round(current.width), Math.round(current.height))

    Behavior on current {
        enabled: panel.visible

        PropertyAnimation { duration: Theme.layoutMotion / 2; easing.type: Easing.InOutQuad }
    }

    CameraPreview {
        anchors { fill: parent; margins: panel.edge }
        mirror: panel.mirror
        interval: 65 // Every other picture: it is a mirror, and painting takes from the recording.
    }
}
