import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// Where a new recording starts, and earlier ones are opened again.
ColumnLayout {
    id: screen

    required property AppModel model

    spacing: Theme.space24

    ArtButton {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: 72
        implicitWidth: 132
        implicitHeight: 132
        art: "qrc:/art/record-button.svg"
        text: qsTr("Record")
        focus: true
        onClicked: screen.model.record()
    }

    Label {
        Layout.alignment: Qt.AlignHCenter
        text: qsTr("Records after a countdown of three seconds.")
        color: Theme.inkSecondary
        font.pixelSize: Theme.fontSize
    }

    LayoutSegments {
        Layout.alignment: Qt.AlignHCenter
        value: screen.model.liveLayout
        onChosen: value => screen.model.setLayout(value)
    }

    Label {
        Layout.topMargin: Theme.space24
        Layout.alignment: Qt.AlignHCenter
        Layout.preferredWidth: Theme.columnWidth
        visible: list.count > 0
        text: qsTr("Recent recordings")
        color: Theme.ink
        font { pixelSize: 15; weight: Font.DemiBold }
    }

    ListView {
        id: list

        Layout.alignment: Qt.AlignHCenter
        Layout.preferredWidth: Theme.columnWidth
        Layout.fillHeight: true
        Layout.bottomMargin: Theme.space24
        clip: true
        spacing: 6
        boundsBehavior: Flickable.StopAtBounds
        model: screen.model.recent
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Recent recordings")
        ScrollBar.vertical: ScrollBar { }

        delegate: RecentRow {
            required property string modelData

            folder: modelData
            width: ListView.view.width
            onClicked: screen.model.open(folder)
            onActiveFocusChanged: if (activeFocus) ListView.view.positionViewAtIndex(index, ListView.Contain)

            required property int index
        }
    }
}
