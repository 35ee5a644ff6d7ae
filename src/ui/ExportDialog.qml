import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Dialogs
import QtQuick.Layouts
import Vantry

/// Asks under which name and in which folder the video goes, and before it replaces a file.
StudioDialog {
    id: dialog

    required property AppModel model
    property url folder
    readonly property url file: model.videoIn(folder, name.text)
    readonly property bool named: file.toString() !== ""
    property bool taken: false

    title: qsTr("Export MP4")
    width: 480
    onFileChanged: taken = model.isTaken(file)

    function ask() {
        const suggested = model.suggestedVideo();
        folder = Format.folder(suggested);
        name.text = Format.fileName(suggested);
        taken = model.isTaken(file);
        open();
        name.forceActiveFocus();
        name.select(0, name.text.lastIndexOf("."));
    }

    /// What has come under the name since the panel looked is not replaced unasked either.
    function save() {
        const asked = taken;
        taken = model.isTaken(file);
        if (!named || taken && !asked)
            return;
        close();
        model.exportTo(file);
    }

    contentItem: ColumnLayout {
        spacing: Theme.space12

        StudioField {
            id: name

            Layout.fillWidth: true
            focus: true
            onAccepted: dialog.save()
            Accessible.name: qsTr("File name")
        }

        RowLayout {
            spacing: Theme.space12

            Label {
                Layout.fillWidth: true
                text: Format.path(dialog.folder)
                color: Theme.inkSecondary
                elide: Text.ElideMiddle
                font.pixelSize: Theme.fontSize
                Accessible.name: qsTr("In the folder %1").arg(text)
            }

            StudioButton {
                text: qsTr("Choose folder…")
                onClicked: folderDialog.open()
            }
        }

        Label {
            text: dialog.taken ? qsTr("A file of this name is there already.") : name.text.includes("/") ? qsTr("A name has no “/” in it.") : ""
            color: Theme.recording
            font.pixelSize: Theme.fontSize
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }

    footer: Item {
        implicitHeight: answers.implicitHeight + 20

        Row {
            id: answers

            anchors { right: parent.right; rightMargin: 20 }
            spacing: Theme.space12

            StudioButton {
                text: qsTr("Cancel")
                onClicked: dialog.close()
            }

            StudioButton {
                kind: StudioButton.Kind.Primary
                text: dialog.taken ? qsTr("Replace") : qsTr("Export")
                enabled: dialog.named
                onClicked: dialog.save()
            }
        }
    }

    FolderDialog {
        id: folderDialog

        title: qsTr("Choose folder")
        currentFolder: dialog.folder
        onAccepted: dialog.folder = selectedFolder
    }
}
