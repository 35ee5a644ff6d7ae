import QtQuick
import QtQuick.Controls.Basic

/// What the main window shows while a clip is counted in, recorded and saved, should it be seen.
Item {
    Label {
        anchors.centerIn: parent
        text: "Recording… use the floating controls, or ⌃⌥R to stop."
        color: Theme.inkSecondary
        font.pixelSize: Theme.fontSize
    }
}
