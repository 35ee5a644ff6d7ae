pragma ComponentBehavior: Bound

import QtQuick
import Vantry

/// Stops, to review or to record again from a bit earlier. It stays until something else is clicked, wherever that is.
FloatingPanel {
    id: menu

    required property AppModel model
    required property FloatingPanel host
    required property PanelPlan plan
    readonly property int rowHeight: 34

    title: qsTr("Vantry back")
    width: 176
    height: 3 * rowHeight + 2 * column.anchors.margins
    cornerRadius: Theme.radius10

    Rectangle {
        anchors.fill: parent
        radius: menu.cornerRadius
        color: Theme.panel
        border.color: Theme.line
    }

    /// Below the item.
    function open(item) {
        const place = plan.beside(Qt.rect(item.mapToGlobal(0, 0).x, host.y, item.width, host.height), Qt.size(width, height));
        setGeometry(place.x, place.y, place.width, place.height);
        visible = true;
        raise();
    }

    Column {
        id: column

        anchors { fill: parent; margins: 5 }

        Repeater {
            model: [
                { seconds: 10, name: qsTr("Back 10 seconds") },
                { seconds: 30, name: qsTr("Back 30 seconds") },
                { seconds: 60, name: qsTr("Back 1 minute") }
            ]

            HudMenuItem {
                required property var modelData

                width: column.width
                height: menu.rowHeight
                text: modelData.name
                onClicked: {
                    menu.model.stop(modelData.seconds, menu.pressAge());
                    menu.visible = false;
                }
            }
        }
    }

    PressesElsewhere {
        watched: menu.visible
        windows: [menu, menu.host]
        onPressed: menu.visible = false
    }

    Connections {
        target: menu.host

        function onPressed() { menu.visible = false; }
        function onVisibleChanged() { menu.visible = false; }
    }

    Connections {
        target: menu.model

        function onPhaseChanged() { menu.visible = false; }
    }
}
