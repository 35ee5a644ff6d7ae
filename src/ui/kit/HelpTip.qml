pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// The help text of a control, shown below it when the pointer or the focus stays there. Nothing is made before.
Loader {
    id: tip

    required property Item target
    required property string text
    required property bool wanted

    active: wanted && text !== ""
    width: 0
    height: 0

    sourceComponent: ToolTip {
        parent: tip.target
        y: tip.target.height + Theme.space4
        width: Math.min(label.implicitWidth + leftPadding + rightPadding, 320)
        padding: Theme.space8
        delay: Theme.helpDelay
        visible: true

        contentItem: Text {
            id: label

            text: tip.text
            color: Theme.ink
            wrapMode: Text.Wrap
            font.pixelSize: Theme.secondarySize
        }

        background: Rectangle {
            radius: Theme.radius5
            color: Theme.raised
            border.color: Theme.line
        }
    }
}
