import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// What can be done with a recording: go on, take its end again, export it.
ColumnLayout {
    id: screen

    required property AppModel model
    readonly property bool recorded: model.projectLength > 0
    readonly property bool exporting: model.busy !== ""

    spacing: Theme.gap * 2

    Item { Layout.fillHeight: true }

    ColumnLayout {
        Layout.alignment: Qt.AlignHCenter
        Layout.fillWidth: false
        Layout.preferredWidth: Theme.columnWidth
        spacing: 6

        Label {
            Layout.fillWidth: true
            text: screen.model.projectName
            color: Theme.ink
            elide: Text.ElideRight
            font { pixelSize: 24; weight: Font.DemiBold }
        }

        Label {
            Layout.fillWidth: true
            text: Format.timecode(screen.model.projectLength) + " in " + screen.model.folder
            color: Theme.inkSecondary
            elide: Text.ElideMiddle
            font.pixelSize: Theme.fontSize
        }
    }

    ActionCard {
        title: "Record"
        Layout.alignment: Qt.AlignHCenter

        StudioButton {
            kind: StudioButton.Kind.Record
            text: "Record more"
            focus: true
            enabled: !screen.exporting
            icon.source: "qrc:/icons/circle-dot.svg"
            onClicked: screen.model.record()
        }

        StudioButton {
            text: "Retake last 10 s"
            enabled: screen.model.projectLength > 10 && !screen.exporting
            icon.source: "qrc:/icons/rotate-ccw.svg"
            onClicked: screen.model.retakeLast(10)
        }

        StudioButton {
            text: "Retake last 30 s"
            enabled: screen.model.projectLength > 30 && !screen.exporting
            icon.source: "qrc:/icons/rotate-ccw.svg"
            onClicked: screen.model.retakeLast(30)
        }
    }

    ActionCard {
        title: "Finish"
        Layout.alignment: Qt.AlignHCenter

        StudioButton {
            kind: StudioButton.Kind.Primary
            text: "Export MP4"
            enabled: screen.recorded && !screen.exporting
            icon.source: "qrc:/icons/share.svg"
            onClicked: exportDialog.ask()
        }

        StudioButton {
            text: "New recording"
            enabled: !screen.exporting
            icon.source: "qrc:/icons/plus.svg"
            onClicked: screen.model.newRecording()
        }
    }

    ExportStatus {
        Layout.alignment: Qt.AlignHCenter
        model: screen.model
        opacity: screen.exporting ? 1 : 0
        enabled: screen.exporting
    }

    Item { Layout.fillHeight: true }

    ExportDialog {
        id: exportDialog

        model: screen.model
    }
}
