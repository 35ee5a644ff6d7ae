import QtQuick
import QtQuick.Layouts
import Vantry

/// Three, two, one, and the way back.
RowLayout {
    id: row

    required property AppModel model

    spacing: Theme.space12

    HudText { text: qsTr("Recording in %1").arg(row.model.phase.secondsLeft) }

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

                Behavior on color { ColorAnimation { duration: Theme.choiceMotion } }
            }
        }
    }

    Item { Layout.fillWidth: true }

    StudioButton {
        text: qsTr("Cancel")
        icon.source: "qrc:/icons/x.svg"
        help: qsTr("Don't record (%1) — nothing is recorded or cut").arg(Words.recordKeys)
        onClicked: row.model.cancelStart()
    }
}
