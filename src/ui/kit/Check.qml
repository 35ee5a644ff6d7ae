import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Controls.impl
import Vantry

/// Something that is or is not so.
CheckBox {
    id: check

    property string help: ""

    padding: Theme.space4
    leftPadding: 0
    implicitHeight: Theme.target
    spacing: Theme.space8
    opacity: enabled ? 1 : Theme.disabled
    Accessible.name: text
    Accessible.description: help

    HelpTip {
        target: check
        text: check.help
        wanted: check.hovered || check.visualFocus
    }

    indicator: Rectangle {
        y: (check.height - height) / 2
        width: Theme.icon
        height: Theme.icon
        radius: Theme.radius5
        color: check.checked ? Theme.accentBlue : check.hovered ? Theme.raisedHover : Theme.raised
        border.color: check.checked ? Theme.accentBlue : Theme.line

        IconImage {
            anchors.centerIn: parent
            visible: check.checked
            source: "qrc:/icons/check.svg"
            color: Theme.accentInk
            sourceSize { width: Theme.space12; height: Theme.space12 }
        }

        FocusRing {
            visible: check.visualFocus
            radius: Theme.radius8
        }
    }

    contentItem: Text {
        leftPadding: check.indicator.width + check.spacing
        text: check.text
        color: Theme.ink
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        font.pixelSize: Theme.fontSize
    }
}
