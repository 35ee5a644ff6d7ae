import QtQuick
import Vantry

/// Shows which control the keyboard goes to.
Rectangle {
    anchors { fill: parent; margins: -3 }
    radius: Theme.radius10
    color: "transparent"
    border { color: Theme.accentBlue; width: 2 }
}
