pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Vantry

/// A text whose digits all take the same room, so that it does not tremble while they run.
Row {
    id: digits

    required property string text
    property font font
    property color color: Theme.ink

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    TextMetrics {
        id: widest

        font: digits.font
        text: "0"
    }

    Repeater {
        model: digits.text.length

        Label {
            required property int index
            readonly property string character: digits.text.charAt(index)

            text: character
            color: digits.color
            font: digits.font
            width: character >= "0" && character <= "9" ? widest.advanceWidth : implicitWidth
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
