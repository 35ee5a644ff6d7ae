import QtQuick
import QtQuick.Layouts
import Vantry

/// The clock, the layouts, and the ways to stop.
RowLayout {
    id: row

    required property AppModel model
    readonly property var corners: ["up-left", "up-right", "down-right", "down-left"]

    spacing: 10

    RecordingLight { seconds: row.model.liveTime }

    Column {
        Layout.minimumWidth: 52
        spacing: 5

        Clock { seconds: row.model.liveTime }

        MicMeter {
            width: 52
            height: 4
            level: row.model.devices.micLevel
        }
    }

    LayoutSegments {
        value: row.model.liveLayout
        onChosen: value => row.model.setLayout(value)
    }

    IconButton {
        icon.source: "qrc:/icons/arrow-" + row.corners[row.model.liveCorner] + ".svg"
        name: qsTr("Move camera bubble to the next corner")
        help: qsTr("Move the camera bubble (%1)").arg(Words.cornerKeys)
        onClicked: row.model.nextCorner()
    }

    Item { Layout.fillWidth: true }

    BackButtons { model: row.model }

    StudioButton {
        kind: StudioButton.Kind.Record
        text: qsTr("Stop")
        icon.source: "qrc:/icons/square.svg"
        onClicked: row.model.stop(0)
    }
}
