import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// Says what went wrong, until the user has seen it.
StudioDialog {
    id: dialog

    required property AppModel model

    title: qsTr("Vantry")
    visible: model.alert !== ""
    onClosed: model.alert = ""

    contentItem: Label {
        text: dialog.model.alert
        color: Theme.inkSecondary
        wrapMode: Text.Wrap
        font.pixelSize: Theme.fontSize
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }

    footer: Item {
        implicitHeight: okay.implicitHeight + 20

        StudioButton {
            id: okay

            anchors { right: parent.right; rightMargin: 20 }
            kind: StudioButton.Kind.Primary
            text: qsTr("OK")
            focus: true
            onClicked: dialog.close()
        }
    }
}
