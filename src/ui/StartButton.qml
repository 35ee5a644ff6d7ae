import QtQuick
import QtQuick.Controls.impl
import QtQuick.Layouts
import Vantry

/// The one that begins a recording.
ArtButton {
    id: button

    required property AppModel model

    art: "qrc:/art/record-button.svg"
    implicitWidth: Theme.artSize
    implicitHeight: Theme.artSize
    text: qsTr("Start\nRecording")
    help: qsTr("Start recording (%1, or %2 from any app)").arg(Words.startKey).arg(Words.recordKeys)
    Accessible.name: qsTr("Start recording")
    onClicked: model.record()

    contentItem: ColumnLayout {
        spacing: Theme.space4

        Item { Layout.fillHeight: true }

        IconImage {
            Layout.alignment: Qt.AlignHCenter
            source: "qrc:/icons/circle-dot.svg"
            color: Theme.artInk
            sourceSize { width: Theme.panelIcon; height: Theme.panelIcon }
        }

        Text {
            Layout.alignment: Qt.AlignHCenter
            text: button.text
            color: Theme.artInk
            horizontalAlignment: Text.AlignHCenter
            font { pixelSize: Theme.fontSize; weight: Font.DemiBold }
        }

        Item { Layout.fillHeight: true }
    }
}
