import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import Vantry

/// Says what went wrong, until the user has seen it.
Dialog {
    id: dialog

    required property AppModel model

    anchors.centerIn: T.Overlay.overlay
    width: 420
    padding: 20
    modal: true
    focus: true
    title: "Vantry"
    visible: model.alert !== ""
    closePolicy: Popup.CloseOnEscape
    onClosed: model.alert = ""

    background: Rectangle {
        radius: 12
        color: Theme.raised
        border.color: Theme.line
    }

    header: Label {
        text: dialog.title
        color: Theme.ink
        padding: 20
        bottomPadding: 0
        font { pixelSize: 16; weight: Font.DemiBold }
    }

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
            text: "OK"
            focus: true
            onClicked: dialog.close()
        }
    }

    T.Overlay.modal: Rectangle { color: "#90000000" }
}
