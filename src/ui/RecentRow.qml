import QtQuick
import QtQuick.Controls.impl
import Vantry

/// One earlier recording; pressing it opens it.
KeyButton {
    id: row

    required property string folder

    /// The keyboard is here.
    property bool ringed: false

    text: folder.split("/").pop()
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: Theme.space12
    Accessible.name: qsTr("Open recording %1").arg(text)

    contentItem: IconLabel {
        alignment: Qt.AlignLeft
        text: row.text
        spacing: Theme.space8
        color: Theme.ink
        font.pixelSize: Theme.fontSize
        icon { source: "qrc:/icons/film.svg"; color: Theme.inkSecondary; width: Theme.icon; height: Theme.icon }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.down || row.hovered ? Theme.raised : Theme.panel
        border { color: Theme.accentBlue; width: row.ringed ? 2 : 0 }
    }
}
