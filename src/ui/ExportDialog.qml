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

    title: "Export MP4"
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
        spacing: Theme.gap

        StudioField {
            id: name

            Layout.fillWidth: true
            focus: true
            onAccepted: dialog.save()
            Accessible.name: "File name"
        }

        RowLayout {
            spacing: Theme.gap

            Label {
                Layout.fillWidth: true
                text: Format.path(dialog.folder)
                color: Theme.inkSecondary
                elide: Text.ElideMiddle
                font.pixelSize: Theme.fontSize
                Accessible.name: "In the folder " + text
            }

            StudioButton {
                text: "Choose folder…"
                onClicked: folderDialog.open()
            }
        }

        Label {
            text: dialog.taken ? "A file of this name is there already." : name.text.includes("/") ? "A name has no “/” in it." : ""
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
            spacing: Theme.gap

            StudioButton {
                text: "Cancel"
                onClicked: dialog.close()
            }

            StudioButton {
                kind: StudioButton.Kind.Primary
                text: dialog.taken ? "Replace" : "Export"
                enabled: dialog.named
                onClicked: dialog.save()
            }
        }
    }

    FolderDialog {
        id: folderDialog

        title: "Choose folder"
        currentFolder: dialog.folder
        onAccepted: dialog.folder = selectedFolder
    }
}
