pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// Every part of the style kit in every state that can be held still.
Rectangle {
    id: page

    implicitWidth: 980
    implicitHeight: 760
    color: Theme.canvas

    component Line: RowLayout {
        id: line

        required property string name

        spacing: Theme.space12

        Caption {
            Layout.preferredWidth: 120
            text: line.name
        }
    }

    ColumnLayout {
        anchors { left: parent.left; top: parent.top; margins: Theme.space24 }
        spacing: Theme.space16

        Heading { text: "Buttons" }

        Repeater {
            model: [
                { name: "normal", kind: StudioButton.Kind.Normal },
                { name: "record", kind: StudioButton.Kind.Record },
                { name: "primary", kind: StudioButton.Kind.Primary },
                { name: "selected", kind: StudioButton.Kind.Selected }
            ]

            Line {
                id: kinds

                required property var modelData

                name: modelData.name

                StudioButton { kind: kinds.modelData.kind; text: "At rest" }
                StudioButton { kind: kinds.modelData.kind; text: "Hovered"; lit: true }
                StudioButton { kind: kinds.modelData.kind; text: "Disabled"; enabled: false }
                StudioButton { kind: kinds.modelData.kind; text: "With an icon"; icon.source: "qrc:/icons/film.svg" }
                StudioButton { kind: kinds.modelData.kind; text: "Focused"; FocusRing { } }
            }
        }

        Line {
            name: "icon, art"

            IconButton { name: "Play"; icon.source: "qrc:/icons/play.svg" }
            IconButton { name: "Play"; icon.source: "qrc:/icons/play.svg"; lit: true }
            IconButton { name: "Play"; icon.source: "qrc:/icons/play.svg"; enabled: false }
            ArtButton { art: "qrc:/art/record-button.svg"; implicitWidth: 88; implicitHeight: 88; text: "Record" }
            ArtButton { art: "qrc:/art/record-button.svg"; implicitWidth: 88; implicitHeight: 88; text: "Record"; lit: true }
            ArtButton { art: "qrc:/art/record-button.svg"; implicitWidth: 88; implicitHeight: 88; text: "Record"; enabled: false }
        }

        Heading { text: "Choices" }

        Line {
            name: "segments"

            LayoutSegments { value: LayoutKind.Bubble }
            CornerSegments { value: CornerKind.BottomRight }
            CornerSegments { value: CornerKind.TopLeft; FocusRing { } }
        }

        Line {
            name: "disabled"

            LayoutSegments { value: LayoutKind.Bubble; enabled: false }
            CornerSegments { value: CornerKind.BottomRight; enabled: false }
        }

        Line {
            name: "lists, checks"

            Picker { name: "Camera"; model: ["A camera with a long name that does not fit", "Another"]; Layout.preferredWidth: 200 }
            Picker { name: "Camera"; model: ["Disabled"]; enabled: false; Layout.preferredWidth: 120 }
            Check { text: "On"; checked: true }
            Check { text: "Off" }
            Check { text: "Disabled"; checked: true; enabled: false }
            StudioField { text: "A field"; Layout.preferredWidth: 140 }
        }

        Heading { text: "Labels" }

        Line {
            name: "keys"

            Keycap { keys: Words.recordKeys }
            Keycap { keys: "Enter" }
            Digits { text: "12:34"; font.pixelSize: Theme.titleSize }
        }

        Line {
            name: "microphone"

            MicMeter { level: 0 }
            MicMeter { level: 0.5 }
            MicMeter { level: 0.85 }
            MicMeter { level: 0.9 }
            MicMeter { level: 0.96 }
        }
    }
}
