import QtQuick
import QtQuick.Layouts
import Vantry

/// Three, two, one, and the way back.
RowLayout {
    id: row

    required property AppModel model

    spacing: Theme.gap

    HudText { text: "Recording in " + row.model.phase.secondsLeft }

    Row {
        spacing: 6

        Repeater {
            model: 3

            Rectangle {
                required property int index

                width: 8
                height: 8
                radius: 4
                color: index < row.model.phase.secondsLeft ? Theme.recording : Theme.line

                Behavior on color { ColorAnimation { duration: 180 } }
            }
        }
    }

    Item { Layout.fillWidth: true }

    StudioButton {
        text: "Cancel"
        icon.source: "qrc:/icons/x.svg"
        Accessible.description: "Don't record (⌃⌥R) — nothing is recorded or cut"
        onClicked: row.model.cancelStart()
    }
}
