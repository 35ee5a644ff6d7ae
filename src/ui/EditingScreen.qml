import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// A recording as a video, and what can be done with it: go on, take its end again, export it.
ColumnLayout {
    id: screen

    required property AppModel model
    readonly property bool recorded: model.projectLength > 0
    readonly property bool exporting: model.busy !== ""
    readonly property int margin: 24

    spacing: 20
    Component.onCompleted: model.refreshPlayer()
    Keys.forwardTo: player

    Connections {
        target: screen.model

        function onRevisionChanged() {
            screen.model.refreshPlayer();
        }
    }

    RowLayout {
        Layout.margins: screen.margin
        Layout.bottomMargin: 0
        spacing: Theme.space12

        ColumnLayout {
            spacing: 4

            Label {
                Layout.fillWidth: true
                text: screen.model.projectName
                color: Theme.ink
                elide: Text.ElideRight
                font { pixelSize: 20; weight: Font.DemiBold }
            }

            Label {
                Layout.fillWidth: true
                text: screen.model.folder
                color: Theme.inkSecondary
                elide: Text.ElideMiddle
                font.pixelSize: Theme.fontSize
            }
        }

        StudioButton {
            text: qsTr("New recording")
            enabled: !screen.exporting
            icon.source: "qrc:/icons/plus.svg"
            onClicked: screen.model.newRecording()
        }

        StudioButton {
            kind: StudioButton.Kind.Primary
            text: qsTr("Export MP4")
            enabled: screen.recorded && !screen.exporting
            icon.source: "qrc:/icons/share.svg"
            onClicked: exportDialog.ask()
        }
    }

    PlayerView {
        id: player

        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.leftMargin: screen.margin
        Layout.rightMargin: screen.margin
        focus: true
        model: screen.model
    }

    Item {
        Layout.alignment: Qt.AlignHCenter
        Layout.bottomMargin: 40 // Below is the status.
        implicitWidth: Math.max(takes.implicitWidth, status.width)
        implicitHeight: takes.implicitHeight

        RowLayout {
            id: takes

            anchors.centerIn: parent
            visible: !screen.exporting
            spacing: Theme.space12

            StudioButton {
                kind: StudioButton.Kind.Record
                text: qsTr("Record more")
                icon.source: "qrc:/icons/circle-dot.svg"
                onClicked: screen.model.record()
            }

            StudioButton {
                text: qsTr("Retake last 10 s")
                enabled: screen.model.projectLength > 10
                icon.source: "qrc:/icons/rotate-ccw.svg"
                onClicked: screen.model.retakeLast(10)
            }

            StudioButton {
                text: qsTr("Retake last 30 s")
                enabled: screen.model.projectLength > 30
                icon.source: "qrc:/icons/rotate-ccw.svg"
                onClicked: screen.model.retakeLast(30)
            }
        }

        ExportStatus {
            id: status

            anchors.centerIn: parent
            visible: screen.exporting
            model: screen.model
        }
    }

    ExportDialog {
        id: exportDialog

        model: screen.model
    }
}
