import QtQuick
import QtQuick.Controls.Basic

/// What the panel has to say.
Label {
    color: Theme.ink
    font { pixelSize: 15; weight: Font.Medium }
    verticalAlignment: Text.AlignVCenter
}
