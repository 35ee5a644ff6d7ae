import QtQuick
import Vantry

/// How long has been recorded.
Digits {
    required property double seconds

    text: Format.timecode(seconds)
    font { pixelSize: 19; weight: Font.DemiBold }
    Accessible.name: qsTr("Recorded %1").arg(text)
}
