import QtQuick
import QtQuick.Layouts
import Vantry

/// What the search for the browser's page has to say, with a button that allows what it asks for; else what there is to know of
/// the area.
RowLayout {
    id: note

    required property BrowserPageSearch browserPage
    required property string sizeNote

    spacing: Theme.space12

    Caption {
        Layout.fillWidth: true
        Layout.minimumHeight: Theme.target
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        text: note.browserPage.isSearching ? qsTr("Looking for the page of the front browser window…")
            : note.browserPage.note !== "" ? note.browserPage.note : note.sizeNote
        color: note.browserPage.note !== "" ? Theme.amber : Theme.inkSecondary
        Accessible.role: note.browserPage.note !== "" ? Accessible.AlertMessage : Accessible.StaticText
    }

    StudioButton {
        visible: note.browserPage.asksToAllow
        text: qsTr("Allow")
        help: qsTr("Switches the desktop's accessibility on until Vantry ends")
        onClicked: note.browserPage.allow()
    }
}
