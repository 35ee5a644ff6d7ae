import QtQuick
import QtQuick.Dialogs
import Vantry

/// Asks where the video goes.
FileDialog {
    id: dialog

    required property AppModel model

    title: "Export MP4"
    fileMode: FileDialog.SaveFile
    nameFilters: ["MP4 video (*.mp4)"]
    defaultSuffix: "mp4"
    onAccepted: model.exportTo(selectedFile)

    function ask() {
        const suggested = model.suggestedVideo();
        currentFolder = suggested.toString().replace(/[^/]*$/, "");
        selectedFile = suggested;
        open();
    }
}
