pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// Earlier recordings, to be opened again.
ColumnLayout {
    id: panel

    required property AppModel model

    spacing: Theme.space8

    Heading { text: qsTr("Recent recordings") }

    Caption {
        visible: list.count === 0
        text: qsTr("No recordings yet")
    }

    ListView {
        id: list

        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        spacing: Theme.space4
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0
        keyNavigationEnabled: true
        model: panel.model.recent
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Recent recordings")
        ScrollBar.vertical: ScrollBar { }

        delegate: RecentRow {
            required property string modelData
            required property int index

            folder: modelData
            width: ListView.view.width
            focusPolicy: Qt.NoFocus
            ringed: ListView.view.activeFocus && ListView.isCurrentItem
            onClicked: panel.model.open(folder)
            Keys.onReturnPressed: panel.model.open(folder)
        }
    }
}
