import QtQuick

/// Shows which control the keyboard goes to.
Rectangle {
    anchors.fill: parent
    anchors.margins: -3
    radius: Theme.radius + 3
    color: "transparent"
    border.color: Theme.accent
    border.width: 2
}
