pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// The size of an area to type, its shape to hold on to, and the areas that were chosen before.
RowLayout {
    id: size

    required property AreaSelection selection
    required property RecentAreas recentAreas

    spacing: Theme.space8

    PixelField {
        name: qsTr("Width in pixels")
        value: size.selection.pixelWidth
        onTyped: pixels => size.selection.setPixelWidth(pixels)
    }

    Caption {
        text: "×"
        Accessible.ignored: true
    }

    PixelField {
        name: qsTr("Height in pixels")
        value: size.selection.pixelHeight
        onTyped: pixels => size.selection.setPixelHeight(pixels)
    }

    Check {
        text: qsTr("16:9")
        help: qsTr("Keep the shape of a video")
        checked: size.selection.isLocked
        onToggled: size.selection.isLocked = checked
    }

    Caption {
        Layout.leftMargin: Theme.space16
        visible: recent.count > 0
        text: qsTr("Recent areas")
    }

    Repeater {
        id: recent

        model: size.recentAreas.areas

        StudioButton {
            required property var modelData

            text: modelData.text
            onClicked: size.selection.choose(modelData.crop)
        }
    }
}
