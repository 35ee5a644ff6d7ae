import QtQuick
import Vantry

/// A line of text that explains or names what is beside it.
Text {
    color: Theme.inkSecondary
    elide: Text.ElideRight
    font.pixelSize: Theme.secondarySize
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: text === ""
}
