pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// What matters most while recording, in little room.
RowLayout {
    id: row

    required property AppModel model
    required property FloatingPanel host

    spacing: 10

    RecordingLight { seconds: row.model.liveTime }

    Clock { seconds: row.model.liveTime }

    MicMeter {
        Layout.fillWidth: true
        level: row.model.devices.micLevel
    }

    StudioButton {
        kind: StudioButton.Kind.Record
        verticalPadding: 6
        text: qsTr("Stop")
        icon.source: "qrc:/icons/square.svg"
        onClicked: row.model.stop(0, row.host.pressAge())
    }
}
