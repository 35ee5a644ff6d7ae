import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// What the panel has to say.
Label {
    color: Theme.ink
    font { pixelSize: Theme.headSize; weight: Font.Medium }
    verticalAlignment: Text.AlignVCenter
}
