import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T

/// A panel in the middle of the window, which waits until it is answered. Escape closes it.
Dialog {
    id: dialog

    anchors.centerIn: T.Overlay.overlay
    width: 420
    padding: 20
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape

    background: Rectangle {
        radius: 12
        color: Theme.raised
        border.color: Theme.line
    }

    header: Label {
        text: dialog.title
        color: Theme.ink
        padding: 20
        bottomPadding: 0
        font { pixelSize: 16; weight: Font.DemiBold }
    }

    T.Overlay.modal: Rectangle { color: "#90000000" }
}
