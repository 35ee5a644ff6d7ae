import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// The main window: the screen of the phase, and the alert above it. It hides while a clip is recorded.
ApplicationWindow {
    id: window

    required property AppModel model

    /// Nothing is being recorded, so nobody minds the window.
    readonly property bool idle: model.phase.kind === Phase.Setup || model.phase.kind === Phase.Editing

    width: Math.min(1200, Screen.desktopAvailableWidth - Theme.space32)
    height: Math.min(780, Screen.desktopAvailableHeight - 2 * Theme.space32)
    minimumWidth: 960
    minimumHeight: 560
    visible: idle
    title: qsTr("Vantry")
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
        highlight: Theme.accentBlue
        highlightedText: Theme.ink
        placeholderText: Theme.inkSecondary
    }

    onClosing: close => {
        close.accepted = false;
        model.quit();
    }

    // A window manager would put the window where it likes each time it comes back.
    property point place: Qt.point(x, y)
    onXChanged: if (visible) place.x = x
    onYChanged: if (visible) place.y = y
    property bool wasShown: false

    onVisibleChanged: {
        if (!visible)
            return;
        if (wasShown) {
            x = place.x;
            y = place.y;
        }
        wasShown = true;
        comeForward();
    }

    Binding {
        target: Theme
        property: "reducedMotion"
        value: window.model.reducedMotion
    }

    Connections {
        target: window.model

        function onAttentionWanted() {
            if (window.visible)
                window.comeForward();
        }
    }

    function comeForward() {
        if (visibility === Window.Minimized)
            showNormal();
        raise();
        requestActivate();
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
        id: recording

        RecordingScreen { }
    }

    Component {
        id: editing

        EditingScreen { model: window.model }
    }

    Label {
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: Theme.space12 }
        text: window.model.status
        color: Theme.inkSecondary
        elide: Text.ElideRight
        font.pixelSize: Theme.fontSize
        Accessible.name: text
        Accessible.ignored: text === ""
    }

    AlertDialog { model: window.model }

    QuitDialog { model: window.model }
}
