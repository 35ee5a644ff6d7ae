import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// Where the playhead is in the project, and the way to move it.
Slider {
    id: scrubber

    required property AppModel model
    readonly property Preview preview: model.preview

    implicitHeight: 28
    padding: 0
    to: Math.max(preview.length, 0.001)
    value: model.playhead
    hoverEnabled: true
    onMoved: model.seek(value)
    onPressedChanged: pressed ? preview.hold() : preview.release()
    Accessible.name: qsTr("Playhead")
    Accessible.description: Format.timecode(model.playhead) + " of " + Format.timecode(preview.length)

    // The slider itself waits for a movement before it takes one for a drag.
    PointHandler {
        acceptedButtons: Qt.LeftButton
        onActiveChanged: if (active) scrubber.jumpTo(point.position.x)
    }

    function jumpTo(x) {
        const room = availableWidth - handle.width;
        const position = (x - leftPadding - handle.width / 2) / room;
        if (room > 0 && Math.abs(position - visualPosition) * room > handle.width / 2)
            model.seek(valueAt(Math.min(Math.max(position, 0), 1)));
    }

    background: Rectangle {
        y: (scrubber.height - height) / 2
        width: scrubber.width
        height: 4
        radius: 2
        color: Theme.line

        Rectangle {
            width: scrubber.handle.x + scrubber.handle.width / 2
            height: parent.height
            radius: 2
            color: Theme.accentBlue
        }
    }

    handle: Rectangle {
        x: scrubber.visualPosition * (scrubber.availableWidth - width)
        y: (scrubber.height - height) / 2
        width: 14
        height: 14
        radius: 7
        color: Theme.ink
        scale: scrubber.pressed ? 1.2 : scrubber.hovered ? 1.1 : 1

        Behavior on scale { NumberAnimation { duration: Theme.hoverMotion; easing.type: Easing.OutQuad } }

        FocusRing {
            radius: parent.radius + 3
            visible: scrubber.visualFocus
        }
    }
}
