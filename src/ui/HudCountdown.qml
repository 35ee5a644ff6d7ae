pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// Three, two, one, and the way back.
RowLayout {
    id: row

    required property AppModel model
    required property HudTip tip
    required property bool folded

    spacing: Theme.space12

    HudText { text: qsTr("Recording in %1").arg(row.model.phase.secondsLeft) }

    Row {
        visible: !row.folded
        spacing: Theme.space8

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
        id: cancel

        verticalPadding: row.folded ? 6 : Theme.space8
        text: qsTr("Cancel")
        icon.source: "qrc:/icons/x.svg"
        Accessible.description: help.text
        onClicked: row.model.cancelStart()

        HudHelp {
            id: help

            tip: row.tip
            text: qsTr("Don't record (%1) — nothing is recorded or cut").arg(Words.recordKeys)
        }
    }
}
