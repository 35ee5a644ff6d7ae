import QtQuick
import QtQuick.Controls.impl

/// A push button of the common style.
KeyButton {
    id: button

    enum Kind { Normal, Record, Primary }

    property int kind: StudioButton.Kind.Normal
    readonly property var colors: [
        { fill: Theme.raised, hover: "#30394a", outline: Theme.line, ink: Theme.ink },
        { fill: "#4a2631", hover: "#65313f", outline: "#83424f", ink: "#ff9aa8" },
        { fill: Theme.accent, hover: "#b5c5ff", outline: Theme.accent, ink: "#101729" }
    ][kind]

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 14
    opacity: enabled ? 1 : 0.5
    icon.color: colors.ink
    icon.width: 16
    icon.height: 16

    contentItem: IconLabel {
        text: button.text
        icon: button.icon
        spacing: 8
        color: button.colors.ink
        font.pixelSize: Theme.fontSize
        font.weight: button.kind === StudioButton.Kind.Primary ? Font.DemiBold : Font.Normal
    }

    background: Rectangle {
        radius: Theme.radius
        color: button.down || button.hovered ? button.colors.hover : button.colors.fill
        border.color: button.colors.outline

        FocusRing { visible: button.visualFocus }
    }
}
