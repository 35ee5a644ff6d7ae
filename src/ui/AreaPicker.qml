pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T
import Vantry

/// The sheet on which the part of the screen is chosen that the video shows. Every choice is handed out at once.
StudioDialog {
    id: picker

    required property AppModel model

    /// A rectangle of fractions of the screen, or undefined for all of it.
    required property var crop

    readonly property AreaSelection area: AreaSelection {
        crop: picker.crop
        pixelSize: picker.model.screenPreview.pixelSize
        onEdited: crop => picker.chosen(crop)
    }

    signal chosen(var crop)

    title: qsTr("Screen area")
    width: T.Overlay.overlay ? T.Overlay.overlay.width - 2 * Theme.space24 : 0
    height: T.Overlay.overlay ? T.Overlay.overlay.height - 2 * Theme.space24 : 0
    topPadding: Theme.space12
    bottomPadding: Theme.space12
    onAboutToShow: {
        model.captureScreenPreview();
        model.recentAreas.refresh();
    }
    onClosed: {
        model.browserPage.cancel();
        model.recentAreas.remember(crop);
        area.cancelDrag();
        area.forgetPage();
    }

    Connections {
        target: picker.model.browserPage

        function onFound(crop) {
            picker.area.choosePage(crop);
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.space12
        Keys.onReturnPressed: picker.accept()
        Keys.onEnterPressed: picker.accept()

        Caption {
            Layout.fillWidth: true
            text: qsTr("Drag over the part of the screen to show in the video, for example the web page without the browser's tabs and address bar.")
            wrapMode: Text.Wrap
        }

        AreaPicture {
            Layout.fillWidth: true
            Layout.fillHeight: true
            preview: picker.model.screenPreview
            selection: picker.area
            focus: true
        }

        AreaChoices {
            Layout.fillWidth: true
            preview: picker.model.screenPreview
            browserPage: picker.model.browserPage
            selection: picker.area
        }

        AreaNote {
            Layout.fillWidth: true
            browserPage: picker.model.browserPage
            sizeNote: picker.visible ? picker.model.recentAreas.sizeNote(picker.crop) : ""
        }
    }

    footer: RowLayout {
        spacing: Theme.space12

        AreaSize {
            Layout.leftMargin: Theme.space24
            Layout.bottomMargin: Theme.space24
            selection: picker.area
            recentAreas: picker.model.recentAreas
        }

        Item { Layout.fillWidth: true }

        StudioButton {
            Layout.rightMargin: Theme.space24
            Layout.bottomMargin: Theme.space24
            kind: StudioButton.Kind.Primary
            text: qsTr("Done")
            onClicked: picker.accept()
        }
    }
}
