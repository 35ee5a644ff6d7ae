import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

/// A titled panel with a row of buttons.
Control {
    id: card

    required property string title
    default property alias buttons: row.data

    implicitWidth: Theme.columnWidth
    padding: 18

    background: Rectangle {
        radius: 12
        color: Theme.panel
        border.color: Theme.line
    }

    contentItem: ColumnLayout {
        spacing: Theme.gap

        Label {
            text: card.title
            color: Theme.inkSecondary
            font { pixelSize: 12; weight: Font.DemiBold }
        }

        Flow {
            id: row

            Layout.fillWidth: true
            spacing: Theme.gap
        }
    }
}
