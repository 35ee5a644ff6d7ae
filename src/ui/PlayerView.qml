import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Controls.impl
import QtQuick.Layouts
import Vantry

/// The project as a video, with the controls under the picture.
FocusScope {
    id: player

    required property AppModel model
    readonly property Preview preview: model.preview

    Keys.onSpacePressed: event => { if (!event.isAutoRepeat) preview.toggle(); }
    Keys.onLeftPressed: preview.step(-1)
    Keys.onRightPressed: preview.step(1)
    Keys.onPressed: event => {
        if (event.key !== Qt.Key_Home && event.key !== Qt.Key_End)
            return;
        model.seek(event.key === Qt.Key_Home ? 0 : preview.length);
        event.accepted = true;
    }

    Rectangle {
        id: frame

        // Exactly 16:9 in whole pixels, so that nothing of the picture is cut off and no edge is left.
        readonly property int sixteenth:
            Math.max(Math.min(player.width / 16, (player.height - controls.height - Theme.space12) / 9), 0)

        x: Math.round((player.width - width) / 2)
        y: Math.round((player.height - controls.height - Theme.space12 - height) / 2)
        width: 16 * sixteenth
        height: 9 * sixteenth
        color: "black"

        TapHandler { onTapped: player.forceActiveFocus() }

        IconImage {
            anchors.centerIn: parent
            visible: player.preview.isEmpty
            source: "qrc:/icons/film.svg"
            color: Theme.line
            sourceSize { width: 48; height: 48 }
        }

        PictureView {
            anchors.fill: parent
            preview: player.preview
            Accessible.role: Accessible.Graphic
            Accessible.name: qsTr("Preview")
        }

        // Round corners: what lies outside of them is painted over. A clip of this shape would cost a drawing of its own.
        Rectangle {
            readonly property int cover: 12

            anchors { fill: parent; margins: -cover }
            radius: cover + 10
            color: "transparent"
            border { color: Theme.canvas; width: cover }
        }

        Rectangle {
            anchors.fill: parent
            radius: 10
            color: "transparent"
            border.color: Theme.line
        }
    }

    RowLayout {
        id: controls

        anchors { left: frame.left; right: frame.right; top: frame.bottom; topMargin: Theme.space12 }
        enabled: !player.preview.isEmpty
        opacity: enabled ? 1 : 0.5
        spacing: Theme.space12

        IconButton {
            focus: true
            name: player.preview.isPlaying ? qsTr("Pause") : qsTr("Play")
            icon.source: player.preview.isPlaying ? "qrc:/icons/pause.svg" : "qrc:/icons/play.svg"
            onClicked: player.preview.toggle()
        }

        Scrubber {
            Layout.fillWidth: true
            model: player.model
            Keys.forwardTo: player
        }

        Digits {
            text: Format.timecode(player.model.playhead) + " / " + Format.timecode(player.preview.length)
            color: Theme.inkSecondary
            font.pixelSize: Theme.fontSize
        }
    }
}
