pragma ComponentBehavior: Bound

import QtQuick
import Vantry

/// One thing to choose in a panel's menu.
KeyButton {
    id: item

    horizontalPadding: 10
    verticalPadding: 0
    Accessible.role: Accessible.MenuItem

    contentItem: Text {
        text: item.text
        color: Theme.ink
        font.pixelSize: Theme.fontSize
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    background: Rectangle {
        radius: Theme.radius5
        color: item.down || item.hovered ? Theme.raised : "transparent"
    }
}
