pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Vantry

/// Where a new recording is set up: its sources, how they are arranged in the video, and earlier recordings. What will be in the video
/// is in the middle.
FocusScope {
    id: screen

    required property AppModel model

    readonly property int sideWidth: width < Theme.wideWindow ? Theme.narrowSide : Theme.sideWidth

    Component.onCompleted: model.captureScreenPreview()

    Connections {
        target: screen.model.settings

        function onDisplayIDChanged() {
            screen.model.captureScreenPreview();
        }
    }

    Keys.onReturnPressed: start.click()
    Keys.onEnterPressed: start.click()

    ColumnLayout {
        anchors { fill: parent; margins: Theme.space24; bottomMargin: Theme.space32 }
        spacing: Theme.space16

        Text {
            text: qsTr("Set up your recording")
            color: Theme.ink
            font { pixelSize: Theme.titleSize; weight: Font.DemiBold }
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: Theme.space24

            SourcesColumn {
                Layout.fillWidth: false
                Layout.preferredWidth: screen.sideWidth
                Layout.alignment: Qt.AlignTop
                model: screen.model
            }

            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: Theme.space8

                LayoutPreview {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.maximumHeight: wantedHeight
                    model: screen.model
                }

                RowLayout {
                    Layout.fillWidth: true
                    Layout.topMargin: Theme.space8
                    spacing: Theme.space16

                    LayoutColumn { model: screen.model }

                    Item { Layout.fillWidth: true }

                    StartButton {
                        id: start

                        Layout.alignment: Qt.AlignBottom
                        model: screen.model
                        focus: true
                    }
                }

                ReadinessLine {
                    Layout.fillWidth: true
                    readiness: screen.model.readiness
                }

                Item { Layout.fillHeight: true }
            }

            ColumnLayout {
                Layout.fillWidth: false
                Layout.preferredWidth: screen.sideWidth
                Layout.fillHeight: true
                spacing: Theme.space24

                ShortcutsPanel { Layout.fillWidth: true }

                RecentPanel {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    model: screen.model
                }
            }
        }
    }
}
