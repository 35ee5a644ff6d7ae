import QtQuick
import QtQuick.Controls.impl
import Vantry

/// A push button of the common style.
KeyButton {
    id: button

    enum Kind { Normal, Record, Primary, Selected }

    property int kind: StudioButton.Kind.Normal

    /// As the pointer makes it.
    property bool lit: hovered || down
    readonly property var colors: [
        { fill: Theme.raised, hover: Theme.raisedHover, outline: Theme.line, ink: Theme.ink },
        { fill: Theme.record, hover: Theme.recordHover, outline: Theme.recordLine, ink: Theme.recordInk },
        { fill: Theme.accentBlue, hover: Theme.accentHover, outline: Theme.accentBlue, ink: Theme.accentInk },
        { fill: Theme.selected, hover: Theme.selectedHover, outline: Theme.selectedLine, ink: Theme.selectedInk }
    ][kind]

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(Theme.target, implicitContentHeight + topPadding + bottomPadding)
    horizontalPadding: 14
    opacity: enabled ? 1 : Theme.disabled
    icon { color: colors.ink; width: Theme.icon; height: Theme.icon }

    contentItem: IconLabel {
        text: button.text
        icon: button.icon
        spacing: Theme.space8
        color: button.colors.ink
        font { pixelSize: Theme.fontSize; weight: button.kind === StudioButton.Kind.Primary ? Font.DemiBold : Font.Normal }
    }

    background: Rectangle {
        radius: Theme.radius
        color: button.lit ? button.colors.hover : button.colors.fill
        border.color: button.colors.outline

        FocusRing { visible: button.visualFocus }
    }
}
