pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Controls.impl
import QtQuick.Layouts
import Vantry

/// One thing that a strip has to say, in two lines at most.
Item {
    id: row

    required property string icon
    required property color iconColor
    required property string text
    readonly property bool truncated: label.truncated

    implicitHeight: Math.max(label.implicitHeight, Theme.icon)
    Layout.fillWidth: true

    IconImage {
        id: picture

        y: 0
        source: "qrc:/icons/" + row.icon + ".svg"
        color: row.iconColor
        sourceSize { width: Theme.icon; height: Theme.icon }
    }

    Label {
        id: label

        anchors { left: picture.right; leftMargin: Theme.space8; right: parent.right }
        text: row.text
        color: Theme.ink
        elide: Text.ElideRight
        font.pixelSize: Theme.secondarySize
        maximumLineCount: 2
        wrapMode: Text.Wrap
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
