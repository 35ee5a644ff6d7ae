import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// Three, two, one.
ColumnLayout {
    id: screen

    required property AppModel model

    spacing: Theme.gap * 2

    Item { Layout.fillHeight: true }

    Label {
        Layout.alignment: Qt.AlignHCenter
        text: screen.model.phase.secondsLeft
        color: Theme.ink
        font { pixelSize: 160; weight: Font.DemiBold }
        Accessible.name: "Recording starts in " + text
    }

    StudioButton {
        Layout.alignment: Qt.AlignHCenter
        text: "Cancel"
        focus: true
        icon.source: "qrc:/icons/x.svg"
        onClicked: screen.model.cancelStart()
        Keys.onEscapePressed: clicked()
    }

    Item { Layout.fillHeight: true }
}
