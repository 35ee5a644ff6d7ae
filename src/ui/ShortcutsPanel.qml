pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.impl
import QtQuick.Layouts
import Vantry

/// The keys that work in every program.
ColumnLayout {
    id: panel

    spacing: Theme.space8

    RowLayout {
        spacing: Theme.space8

        IconImage {
            source: "qrc:/icons/keyboard.svg"
            color: Theme.inkSecondary
            sourceSize { width: Theme.icon; height: Theme.icon }
        }

        Heading { text: qsTr("Shortcuts") }
    }

    Caption { text: qsTr("Work in any app") }

    Repeater {
        model: [
            { keys: Words.recordKeys, does: qsTr("Start / stop recording") },
            { keys: Words.backKeys, does: qsTr("Go back 30 s (stop & review)") },
            { keys: Words.cameraKeys, does: qsTr("Camera full") },
            { keys: Words.bubbleKeys, does: qsTr("Screen + me in a bubble") },
            { keys: Words.screenKeys, does: qsTr("Screen only") },
            { keys: Words.cornerKeys, does: qsTr("Move bubble to next corner") }
        ]

        RowLayout {
            id: row

            required property var modelData

            spacing: Theme.space8

            Keycap { keys: row.modelData.keys }

            Caption {
                Layout.fillWidth: true
                text: row.modelData.does
                color: Theme.ink
            }
        }
    }
}
