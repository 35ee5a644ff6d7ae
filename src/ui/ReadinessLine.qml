import QtQuick
import QtQuick.Controls.impl
import QtQuick.Layouts
import Vantry

/// What would stop a recording, or else for how long there is room.
RowLayout {
    id: line

    required property Readiness readiness
    readonly property bool warns: readiness.problem !== ""

    spacing: Theme.space8

    IconImage {
        visible: line.warns
        source: "qrc:/icons/triangle-alert.svg"
        color: Theme.amber
        sourceSize { width: Theme.icon; height: Theme.icon }
    }

    Caption {
        Layout.fillWidth: true
        text: line.warns ? line.readiness.problem : line.readiness.room
        color: line.warns ? Theme.amber : Theme.inkSecondary
        horizontalAlignment: line.warns ? Text.AlignLeft : Text.AlignRight
        wrapMode: Text.Wrap
    }
}
