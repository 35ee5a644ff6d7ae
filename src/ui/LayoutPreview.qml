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

    AreaSelection {
        id: area

        crop: preview.model.settings.setupCrop
        pixelSize: preview.model.screenPreview.pixelSize
    }

    LayoutPlacement {
        id: placement

        layout: preview.model.liveLayout
        corner: preview.model.liveCorner
        bubble: preview.model.settings.setupBubble
        frame: Qt.size(stage.width, stage.height)
        screen: preview.model.screenPreview.hasImage ? Qt.size(area.pixelWidth, area.pixelHeight) : Qt.size(0, 0)
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
            visible: !preview.model.screenPreview.hasImage && !camera.coversAll
        }

        Item {
            x: placement.screenRect.x
            y: placement.screenRect.y
            width: placement.screenRect.width
            height: placement.screenRect.height
            visible: !camera.coversAll
            clip: true

            ScreenImage {
                x: -area.shown.x * width
                y: -area.shown.y * height
                width: parent.width / area.shown.width
                height: parent.height / area.shown.height
                preview: preview.model.screenPreview
            }
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
