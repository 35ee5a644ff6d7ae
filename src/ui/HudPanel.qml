import QtQuick
import Vantry

/// The controls that float over the screen while a clip is counted in, recorded and saved; folded, a pill with what matters most. Both
/// can be dragged by what is free of controls.
FloatingPanel {
    id: panel

    required property AppModel model
    required property PanelPlan plan
    required property HudTip tip
    readonly property BackMenu backMenu: BackMenu {
        model: panel.model
        plan: panel.plan
        host: panel
    }
    readonly property bool folded: model.settings.panelFolded

    title: qsTr("Vantry controls")
    width: plan.hudPlace.width
    height: plan.hudPlace.height
    cornerRadius: folded ? height / 2 : Theme.radius14
    visible: false

    Connections {
        target: panel.plan

        function onHudPlaceChanged() { panel.goToPlace(); }

        function onHudShownChanged() {
            panel.goToPlace();
            panel.visible = panel.plan.hudShown;
        }
    }

    function goToPlace() {
        const place = plan.hudPlace;
        setGeometry(place.x, place.y, place.width, place.height);
    }

    Rectangle {
        anchors.fill: parent
        radius: panel.cornerRadius
        color: Theme.panel
        border.color: Theme.line
    }

    DragHandle {
        anchors.fill: parent
        area: panel.plan.area
        onDropped: place => panel.plan.keepHudPlace(place)
    }

    Loader {
        anchors { left: parent.left; right: fold.left; top: parent.top; bottom: parent.bottom }
        anchors { leftMargin: panel.folded ? 14 : 18; rightMargin: 8 }
        sourceComponent: panel.contentOf(panel.model.phase.kind)
    }

    IconButton {
        id: fold

        anchors { right: parent.right; rightMargin: panel.folded ? 6 : 12; verticalCenter: parent.verticalCenter }
        icon.source: panel.folded ? "qrc:/icons/chevrons-left-right.svg" : "qrc:/icons/chevrons-right-left.svg"
        name: panel.folded ? qsTr("Unfold the panel") : qsTr("Fold the panel")
        onClicked: panel.model.settings.panelFolded = !panel.folded

        HudHelp {
            tip: panel.tip
            text: fold.name
        }
    }

    function contentOf(phase) {
        switch (phase) {
        case Phase.Countdown:
            return countdown;
        case Phase.Recording:
            return folded ? pill : recording;
        case Phase.Saving:
            return saving;
        default:
            return null;
        }
    }

    Component {
        id: countdown

        HudCountdown {
            model: panel.model
            tip: panel.tip
            folded: panel.folded
        }
    }

    Component {
        id: recording

        HudRecording {
            model: panel.model
            host: panel
            backMenu: panel.backMenu
            tip: panel.tip
        }
    }

    Component {
        id: pill

        HudPill {
            model: panel.model
            host: panel
        }
    }

    Component {
        id: saving

        HudText { text: qsTr("Saving recording…") }
    }
}
