import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Controls.impl
import QtQuick.Layouts
import Vantry

/// Stops, to review or to record again from a bit earlier.
Control {
    id: buttons

    required property AppModel model

    padding: 3
    leftPadding: 9

    background: Rectangle {
        radius: 8
        color: "transparent"
        border.color: Theme.line
    }

    contentItem: RowLayout {
        spacing: 1

        IconImage {
            source: "qrc:/icons/rotate-ccw.svg"
            color: Theme.inkSecondary
            sourceSize { width: 15; height: 15 }
        }

        Repeater {
            model: [
                { seconds: 10, label: qsTr("10 s"), name: qsTr("Back 10 seconds") },
                { seconds: 30, label: qsTr("30 s"), name: qsTr("Back 30 seconds") },
                { seconds: 60, label: qsTr("1 min"), name: qsTr("Back 1 minute") }
            ]

            KeyButton {
                id: button

                required property var modelData

                padding: 6
                horizontalPadding: 7
                text: modelData.label
                Accessible.name: modelData.name
                Accessible.description: qsTr("Stop and review from a bit earlier — retake or add a bubble there")
                onClicked: buttons.model.stop(modelData.seconds)

                contentItem: Text {
                    text: button.text
                    color: button.hovered ? Theme.ink : Theme.inkSecondary
                    font.pixelSize: Theme.fontSize
                    horizontalAlignment: Text.AlignHCenter
                }

                background: Rectangle {
                    radius: 6
                    color: button.down || button.hovered ? Theme.raised : "transparent"

                    FocusRing { visible: button.visualFocus }
                }
            }
        }
    }
}
