import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// Says what would be lost before the program ends, and asks what to do. Escape takes the wish to quit back.
StudioDialog {
    id: dialog

    required property AppModel model

    title: qsTr("Quit Vantry?")
    visible: model.quitting.problem !== ""
    onRejected: model.quitting.stay()

    contentItem: Label {
        text: dialog.model.quitting.problem
        color: Theme.inkSecondary
        wrapMode: Text.Wrap
        font.pixelSize: Theme.fontSize
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }

    footer: Item {
        implicitHeight: answers.implicitHeight + 20

        Row {
            id: answers

            anchors { right: parent.right; rightMargin: 20 }
            spacing: Theme.space12

            StudioButton {
                text: qsTr("Quit All the Same")
                onClicked: dialog.model.quitting.quitAllTheSame()
            }

            StudioButton {
                kind: StudioButton.Kind.Primary
                text: qsTr("Try Again")
                focus: true
                onClicked: dialog.model.quitting.start()
            }
        }
    }
}
