import QtQuick
import Vantry

/// Says that a clip is being recorded: it blinks with the clock. Anything smoother would paint all the time and take from the recording.
Rectangle {
    required property double seconds

    implicitWidth: 10
    implicitHeight: 10
    radius: 5
    color: Theme.recording
    opacity: Math.floor(seconds) % 2 === 0 ? 1 : 0.4
}
