pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Controls.impl
import Vantry

/// A choice of one out of a list that is opened.
ComboBox {
    id: picker

    /// What is chosen here.
    required property string name
    property string help: ""

    implicitHeight: 32
    leftPadding: Theme.space12
    rightPadding: Theme.space32
    opacity: enabled ? 1 : Theme.disabled
    font.pixelSize: Theme.fontSize
    Accessible.name: name
    Accessible.description: help

    HelpTip {
        target: picker
        text: picker.help !== "" ? picker.help : label.truncated ? picker.displayText : ""
        wanted: (picker.hovered || picker.visualFocus) && !picker.down
    }

    contentItem: Text {
        id: label

        text: picker.displayText
        color: Theme.ink
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        font: picker.font
    }

    indicator: IconImage {
        x: picker.width - width - Theme.space8
        y: (picker.height - height) / 2
        source: "qrc:/icons/chevron-down.svg"
        color: Theme.inkSecondary
        sourceSize { width: Theme.icon; height: Theme.icon }
    }

    background: Rectangle {
        radius: Theme.radius
        color: picker.hovered || picker.down ? Theme.raisedHover : Theme.raised
        border.color: Theme.line

        FocusRing { visible: picker.visualFocus && !picker.down }
    }

    delegate: ItemDelegate {
        id: entry

        required property int index
        required property string modelData

        width: ListView.view.width
        text: modelData
        highlighted: picker.highlightedIndex === index
        padding: Theme.space8
        leftPadding: Theme.space12

        contentItem: IconLabel {
            alignment: Qt.AlignLeft
            mirrored: true
            text: entry.text
            spacing: Theme.space8
            color: Theme.ink
            font.pixelSize: Theme.fontSize
            icon {
                source: picker.currentIndex === entry.index ? "qrc:/icons/check.svg" : ""
                color: Theme.accentBlue
                width: Theme.icon
                height: Theme.icon
            }
        }

        background: Rectangle {
            radius: Theme.radius5
            color: entry.highlighted ? Theme.selected : "transparent"
        }
    }

    popup: Popup {
        y: picker.height + Theme.space4
        width: picker.width
        implicitHeight: Math.min(contentItem.implicitHeight + 2 * padding, 320)
        padding: Theme.space4

        contentItem: ListView {
            implicitHeight: contentHeight
            clip: true
            model: picker.popup.visible ? picker.delegateModel : null
            currentIndex: picker.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
        }

        background: Rectangle {
            radius: Theme.radius8
            color: Theme.panel
            border.color: Theme.line
        }
    }
}
