pragma ComponentBehavior: Bound

import QtQuick
import Vantry

/// The picture of the screen, on which an area is drawn, dragged by its handles and moved with the arrow keys.
FocusScope {
    id: picture

    required property ScreenPreview preview
    required property AreaSelection selection

    implicitHeight: 160

    Rectangle {
        anchors.fill: parent
        visible: !picture.preview.hasImage
        radius: Theme.radius
        color: Theme.well
        border.color: Theme.line
    }

    Item {
        id: sheet

        readonly property real shape: picture.preview.pixelSize.height > 0 ? picture.preview.pixelSize.width / picture.preview.pixelSize.height : 16 / 9
        readonly property int areaLeft: Math.round(picture.selection.shown.x * width)
        readonly property int areaTop: Math.round(picture.selection.shown.y * height)
        readonly property rect area: Qt.rect(areaLeft, areaTop, Math.round(picture.selection.shown.right * width) - areaLeft,
            Math.round(picture.selection.shown.bottom * height) - areaTop)

        anchors.centerIn: parent
        width: Math.round(Math.min(picture.width, picture.height * shape))
        height: Math.round(width / shape)
        focus: true
        activeFocusOnTab: true
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Screen picture; drag to choose the area")
        Accessible.description: picture.selection.name + ", " + picture.selection.readout
        Accessible.focusable: true
        Keys.onPressed: event => event.accepted = picture.selection.pressKey(event.key, event.modifiers)

        ScreenImage {
            anchors.fill: parent
            preview: picture.preview
        }

        Caption {
            anchors { fill: parent; margins: Theme.space24 }
            visible: !picture.preview.hasImage
            text: qsTr("The screen picture appears here once Screen Recording is allowed for Vantry.")
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            wrapMode: Text.Wrap
        }

        MouseArea {
            property point from

            anchors.fill: parent
            cursorShape: Qt.CrossCursor
            preventStealing: true
            onPressed: event => {
                from = Qt.point(event.x, event.y);
                sheet.forceActiveFocus(Qt.MouseFocusReason);
            }
            onPositionChanged: event => picture.selection.draw(from, Qt.point(event.x, event.y), Qt.size(width, height))
            onReleased: picture.selection.endDrag()
            onCanceled: picture.selection.cancelDrag()
        }

        AreaOutline {
            anchors.fill: parent
            area: sheet.area
            outlined: !picture.selection.isWhole
        }

        Repeater {
            model: [
                AreaSelection.NoEdge, AreaSelection.LeftEdge, AreaSelection.RightEdge, AreaSelection.TopEdge, AreaSelection.BottomEdge,
                AreaSelection.LeftEdge | AreaSelection.TopEdge, AreaSelection.RightEdge | AreaSelection.TopEdge,
                AreaSelection.LeftEdge | AreaSelection.BottomEdge, AreaSelection.RightEdge | AreaSelection.BottomEdge
            ]

            AreaHandle {
                required property int modelData

                edges: modelData
                area: sheet.area
                selection: picture.selection
                visible: !picture.selection.isWhole
            }
        }

        FocusRing {
            visible: sheet.activeFocus
            radius: Theme.radius5
        }
    }
}
