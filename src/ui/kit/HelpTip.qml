import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// The help text of a control, shown below it when the pointer or the focus stays there. Nothing is made before. Its components are not
/// bound: inside of a delegate, Qt 6.4 would refuse to make a bound one.
Item {
    id: tip

    required property Item target
    required property string text
    required property bool wanted

    Loader {
        active: tip.wanted && tip.text !== ""

        sourceComponent: ToolTip {
            parent: tip.target
            y: tip.target.height + Theme.space4
            width: Math.min(label.implicitWidth + leftPadding + rightPadding, Theme.tipWidth)
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
}
