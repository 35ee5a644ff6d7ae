import QtQuick
import Vantry

/// The live camera where it is in the video. It goes to a new place as smoothly as there.
CameraPreview {
    id: camera

    required property rect place
    required property real shown
    readonly property bool coversAll: shown === 1 && radius === 0 && isLive

    x: place.x
    y: place.y
    width: place.width
    height: place.height
    opacity: shown
    visible: opacity > 0
    ringColor: Theme.ring

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
}
