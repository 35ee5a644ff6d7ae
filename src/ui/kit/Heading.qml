import QtQuick
import Vantry

/// The head of a section.
Text {
    color: Theme.ink
    elide: Text.ElideRight
    font { pixelSize: Theme.headSize; weight: Font.DemiBold }
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
