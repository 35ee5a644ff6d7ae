import QtQuick
import Vantry

/// The controls that float over the screen while a clip is counted in, recorded and saved. The panel can be dragged by what is free of
/// controls.
FloatingPanel {
    id: panel

    required property AppModel model
    required property bool shown
    required property rect place

    title: qsTr("Vantry controls")
    width: 760
    height: 64
    cornerRadius: 14

    onShownChanged: {
        if (shown)
            setGeometry(place.x, place.y, place.width, place.height);
        visible = shown;
    }

    Rectangle {
        anchors.fill: parent
        radius: panel.cornerRadius
        color: Theme.panel
        border.color: Theme.line
    }

    DragHandle { anchors.fill: parent }

    Loader {
        anchors { fill: parent; leftMargin: 18; rightMargin: 12 }
        sourceComponent: panel.contentOf(panel.model.phase.kind)
    }

    // The main window, which says it otherwise, is hidden.
    HudText {
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; leftMargin: 18; rightMargin: 18; bottomMargin: 1 }
        text: panel.model.status
        color: Theme.amber
        elide: Text.ElideRight
        font.pixelSize: 10
    }

    function contentOf(phase) {
        switch (phase) {
        case Phase.Countdown:
            return countdown;
        case Phase.Recording:
            return recording;
        case Phase.Saving:
            return saving;
        default:
            return null;
        }
    }

    Component {
        id: countdown

        HudCountdown { model: panel.model }
    }

    Component {
        id: recording

        HudRecording { model: panel.model }
    }

    Component {
        id: saving

        HudText { text: qsTr("Saving recording…") }
    }
}
