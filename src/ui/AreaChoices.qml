import QtQuick
import QtQuick.Layouts
import Vantry

/// The areas that need no dragging, and how large the chosen one is.
RowLayout {
    id: choices

    required property ScreenPreview preview
    required property BrowserPageSearch browserPage
    required property AreaSelection selection

    spacing: Theme.space8

    StudioButton {
        kind: choices.selection.isWhole ? StudioButton.Kind.Selected : StudioButton.Kind.Normal
        icon.source: "qrc:/icons/rectangle-horizontal.svg"
        text: qsTr("Full screen")
        onClicked: choices.selection.chooseWhole()
    }

    StudioButton {
        enabled: choices.preview.menuBar > 0
        kind: choices.selection.isBelowMenuBar ? StudioButton.Kind.Selected : StudioButton.Kind.Normal
        icon.source: "qrc:/icons/panel-top.svg"
        text: qsTr("Hide menu bar")
        help: enabled ? qsTr("Without menu bar") : qsTr("There is no bar at the top of this screen.")
        onClicked: choices.selection.chooseBelow(choices.preview.menuBar)
    }

    StudioButton {
        kind: choices.selection.isPage ? StudioButton.Kind.Selected : StudioButton.Kind.Normal
        icon.source: "qrc:/icons/app-window.svg"
        text: qsTr("Hide browser tab bar")
        help: qsTr("Show only the web page of the front browser window on this screen")
        onClicked: choices.browserPage.find()
    }

    Item { Layout.fillWidth: true }

    KeyButton {
        focusPolicy: Qt.NoFocus
        padding: 0
        implicitWidth: implicitContentWidth
        implicitHeight: Math.max(Theme.target, implicitContentHeight)
        text: choices.selection.readout
        help: qsTr("Size of the area in the recording; 1080 or more tall stays sharp in a 1080p export")
        Accessible.role: Accessible.StaticText

        contentItem: Digits {
            text: choices.selection.readout
            font.pixelSize: Theme.fontSize
        }
    }
}
