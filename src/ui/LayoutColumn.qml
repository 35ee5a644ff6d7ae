pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// How the video begins.
ColumnLayout {
    id: column

    required property AppModel model

    spacing: Theme.space12

    Labelled {
        label: qsTr("Starting layout")

        LayoutSegments {
            name: qsTr("Starting layout")
            value: column.model.liveLayout
            onChosen: value => column.model.setLayout(value)
        }
    }

    RowLayout {
        spacing: Theme.space12

        Labelled {
            label: qsTr("Bubble corner")

            CornerSegments {
                value: column.model.liveCorner
                onChosen: value => column.model.setCorner(value)
            }
        }

        Labelled {
            label: qsTr("Bubble size")

            SizeSegments {
                value: column.model.settings.setupBubble
                onChosen: value => column.model.settings.setupBubble = value
            }
        }
    }

    Check {
        text: qsTr("Blur camera background")
        help: qsTr("Blur what's behind you in the camera image. Not shown in this preview; applied in the recording and can be switched off in the editor.")
        checked: column.model.settings.setupBlur
        onToggled: column.model.settings.setupBlur = checked
    }
}
