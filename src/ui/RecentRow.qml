import QtQuick
import QtQuick.Controls.impl
import Vantry

/// One earlier recording; pressing it opens it.
KeyButton {
    id: row

    required property string folder

    text: folder.split("/").pop()
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 10
    horizontalPadding: 12
    Accessible.name: qsTr("Open recording %1").arg(text)

    contentItem: IconLabel {
        alignment: Qt.AlignLeft
        text: row.text
        spacing: 10
        color: Theme.ink
        font.pixelSize: Theme.fontSize
        icon { source: "qrc:/icons/film.svg"; color: Theme.inkSecondary; width: 16; height: 16 }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.down || row.hovered ? Theme.raised : Theme.panel

        FocusRing { visible: row.visualFocus }
    }
}
