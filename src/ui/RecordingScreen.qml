import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Vantry

/// While a clip is recorded and saved.
ColumnLayout {
    id: screen

    required property AppModel model
    readonly property bool saving: model.phase.kind === Phase.Saving

    spacing: Theme.gap * 2

    Item { Layout.fillHeight: true }

    RowLayout {
        Layout.alignment: Qt.AlignHCenter
        spacing: Theme.gap

        Rectangle {
            implicitWidth: 14
            implicitHeight: 14
            radius: 7
            color: Theme.recording
            visible: !screen.saving

            SequentialAnimation on opacity {
                loops: Animation.Infinite
                NumberAnimation { to: 0.35; duration: 700; easing.type: Easing.InOutQuad }
                NumberAnimation { to: 1; duration: 700; easing.type: Easing.InOutQuad }
            }
        }

        Label {
            text: Format.timecode(screen.model.liveTime)
            color: Theme.ink
            font { pixelSize: 64; weight: Font.DemiBold }
            Accessible.name: "Recorded " + text
        }
    }

    Label {
        Layout.alignment: Qt.AlignHCenter
        text: screen.saving ? "Saving…" : "Recording…"
        color: Theme.inkSecondary
        font.pixelSize: Theme.fontSize
    }

    StudioButton {
        Layout.alignment: Qt.AlignHCenter
        kind: StudioButton.Kind.Record
        text: "Stop"
        focus: true
        enabled: !screen.saving
        icon.source: "qrc:/icons/square.svg"
        onClicked: screen.model.stop(0)
    }

    Item { Layout.fillHeight: true }
}
