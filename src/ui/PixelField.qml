import QtQuick
import Vantry

/// A number of pixels to type. It is taken with Return and when the field is left.
StudioField {
    id: field

    required property string name
    required property int value

    signal typed(int pixels)

    implicitWidth: 72
    implicitHeight: Theme.panelTarget
    padding: Theme.space4
    leftPadding: Theme.space8
    text: value
    inputMethodHints: Qt.ImhDigitsOnly
    horizontalAlignment: Text.AlignRight
    validator: IntValidator { bottom: 1; top: 99999 }
    Accessible.name: name
    Keys.onReturnPressed: take()
    Keys.onEnterPressed: take()
    Keys.onEscapePressed: event => {
        event.accepted = text !== String(value);
        show();
    }
    onActiveFocusChanged: if (!activeFocus) take()
    onValueChanged: show()

    function take() {
        if (acceptableInput && text !== String(value))
            typed(Number(text));
        show();
    }

    function show() {
        text = value;
    }
}
