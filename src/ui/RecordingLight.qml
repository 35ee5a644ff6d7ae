import QtQuick

/// Says that a clip is being recorded.
Rectangle {
    implicitWidth: 10
    implicitHeight: 10
    radius: 5
    color: Theme.recording

    SequentialAnimation on opacity {
        loops: Animation.Infinite
        NumberAnimation { to: 0.35; duration: 700; easing.type: Easing.InOutQuad }
        NumberAnimation { to: 1; duration: 700; easing.type: Easing.InOutQuad }
    }
}
