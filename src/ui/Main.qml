import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// The main window: the screen of the phase, and the alert above it.
ApplicationWindow {
    id: window

    required property AppModel model

    width: 1200
    height: 780
    minimumWidth: 640
    minimumHeight: 480
    visible: true
    title: "Vantry"
    color: Theme.canvas
    palette {
        window: Theme.canvas
        windowText: Theme.ink
        base: Theme.panel
        text: Theme.ink
        button: Theme.raised
        buttonText: Theme.ink
        light: Theme.raised
        mid: Theme.line
        dark: Theme.inkSecondary
        highlight: Theme.accent
        highlightedText: Theme.ink
        placeholderText: Theme.inkSecondary
    }

    onClosing: close => {
        close.accepted = false;
        model.quit();
    }

    Loader {
        anchors.fill: parent
        focus: true
        sourceComponent: window.screenOf(window.model.phase.kind)
    }

    function screenOf(phase) {
        switch (phase) {
        case Phase.Setup:
            return setup;
        case Phase.Countdown:
            return countdown;
        case Phase.Editing:
            return editing;
        default:
            return recording;
        }
    }

    Component {
        id: setup

        SetupScreen { model: window.model }
    }

    Component {
        id: countdown

        CountdownScreen { model: window.model }
    }

    Component {
        id: recording

        RecordingScreen { model: window.model }
    }

    Component {
        id: editing

        EditingScreen { model: window.model }
    }

    AlertDialog { model: window.model }
}
