import QtQuick
import Vantry

/// A time whose digits all take the same room, so that it does not tremble while it runs.
Row {
    id: clock

    required property double seconds
    readonly property string text: Format.timecode(seconds)

    Accessible.role: Accessible.StaticText
    Accessible.name: "Recorded " + text

    TextMetrics {
        id: widest

        font: digits.font
        text: "0"
    }

    HudText {
        id: digits

        visible: false
        font { pixelSize: 19; weight: Font.DemiBold }
    }

    Repeater {
        model: clock.text.length

        HudText {
            required property int index

            text: clock.text.charAt(index)
            font: digits.font
            width: text === ":" ? implicitWidth : widest.advanceWidth
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
}
