pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// The clock, the layouts, and the ways to stop.
RowLayout {
    id: row

    required property AppModel model
    required property FloatingPanel host
    required property BackMenu backMenu
    required property HudTip tip

    /// On a screen without room for the words of the buttons.
    readonly property bool narrow: host.width < 700

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

    CornerButton {
        model: row.model
        tip: row.tip
    }

    Item { Layout.fillWidth: true }

    BackButton {
        menu: row.backMenu
        tip: row.tip
        narrow: row.narrow
    }

    StudioButton {
        kind: StudioButton.Kind.Record
        text: row.narrow ? "" : Accessible.name
        Accessible.name: qsTr("Stop")
        icon.source: "qrc:/icons/square.svg"
        onClicked: row.model.stop(0, row.host.pressAge())

        HudHelp {
            tip: row.tip
            text: qsTr("Stop and review (%1)").arg(Words.recordKeys)
        }
    }
}
