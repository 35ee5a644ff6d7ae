import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// How far the export is, and the way out of it.
RowLayout {
    id: status

    required property AppModel model

    width: Theme.columnWidth
    spacing: Theme.space12

    Label {
        Layout.preferredWidth: 110
        text: status.model.busy
        color: Theme.inkSecondary
        font.pixelSize: Theme.fontSize
    }

    ProgressBar {
        id: bar

        Layout.preferredWidth: Theme.columnWidth - 250
        value: status.model.exportProgress ?? 0
        Accessible.name: qsTr("Export progress")

        background: Rectangle {
            implicitHeight: 6
            radius: 3
            color: Theme.line
        }

        contentItem: Item {
            implicitHeight: 6

            Rectangle {
                width: bar.visualPosition * parent.width
                height: parent.height
                radius: 3
                color: Theme.accentBlue
            }
        }
    }

    StudioButton {
        Layout.preferredWidth: 116
        text: qsTr("Cancel")
        icon.source: "qrc:/icons/x.svg"
        onClicked: status.model.cancelExport()
        Accessible.name: qsTr("Cancel export")
    }
}
