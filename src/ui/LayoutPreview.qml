pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.impl
import Vantry

/// What the video will look like when it begins: as large as it fits, 16:9, with its name below.
Item {
    id: preview

    required property AppModel model
    readonly property var names: [qsTr("Camera"), qsTr("Screen + Me"), qsTr("Screen")]
    readonly property string layoutName: names[model.liveLayout]

    /// Of the whole width.
    readonly property real wantedHeight: width * 9 / 16 + Theme.space8 + caption.height

    implicitHeight: Theme.leastPreview
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("Preview of the starting layout: %1").arg(layoutName)

    LayoutPlacement {
        id: placement

        layout: preview.model.liveLayout
        corner: preview.model.liveCorner
        bubble: preview.model.settings.setupBubble
        frame: Qt.size(stage.width, stage.height)
    }

    Rectangle {
        id: stage

        readonly property int sixteenth:
            Math.max(Math.min(preview.width / 16, (preview.height - caption.height - Theme.space8) / 9), 0)

        x: Math.round((preview.width - width) / 2)
        width: 16 * sixteenth
        height: 9 * sixteenth
        color: Theme.stage
        clip: true

        ScreenPlaceholder {
            anchors.fill: parent
            visible: !camera.coversAll
        }

        PreviewCamera {
            id: camera

            mirror: preview.model.devices.mirror
            place: placement.cameraRect
            radius: placement.cameraRadius
            shown: placement.cameraOpacity
            ring: placement.ringWidth
        }

        Rectangle {
            anchors.fill: parent
            color: "transparent"
            border.color: Theme.line
        }
    }

    Caption {
        id: caption

        anchors { top: stage.bottom; topMargin: Theme.space8; horizontalCenter: parent.horizontalCenter }
        text: qsTr("Preview · %1").arg(preview.layoutName)
    }
}
