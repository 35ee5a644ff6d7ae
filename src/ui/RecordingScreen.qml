import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// What the main window shows while a clip is counted in, recorded and saved, should it be seen.
Item {
    Label {
        anchors.centerIn: parent
        text: qsTr("Recording… use the floating controls, or %1 to stop.").arg(Words.recordKeys)
        color: Theme.inkSecondary
        font.pixelSize: Theme.fontSize
    }
}
