import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import Vantry

/// A panel in the middle of the window, which waits until it is answered. Escape closes it.
Dialog {
    id: dialog

    anchors.centerIn: T.Overlay.overlay
    width: 420
    padding: Theme.space24
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape

    background: Rectangle {
        radius: Theme.radius14
        color: Theme.panel
        border.color: Theme.line
    }

    header: Label {
        text: dialog.title
        color: Theme.ink
        padding: Theme.space24
        bottomPadding: 0
        font { pixelSize: Theme.headSize; weight: Font.DemiBold }
    }

    T.Overlay.modal: Rectangle { color: Theme.shade }
}
