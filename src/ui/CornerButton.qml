pragma ComponentBehavior: Bound

import QtQuick
import Vantry

/// Shows which corner the camera's bubble is in, and moves it to the next one.
IconButton {
    id: button

    required property AppModel model
    required property HudTip tip
    readonly property var arrows: ["up-left", "up-right", "down-right", "down-left"]

    implicitWidth: 30
    implicitHeight: 30
    icon.source: "qrc:/icons/arrow-" + arrows[model.liveCorner] + ".svg"
    name: qsTr("Move camera bubble to the next corner")
    Accessible.description: help.text
    onClicked: model.nextCorner()

    HudHelp {
        id: help

        tip: button.tip
        text: qsTr("Move the camera bubble (%1)").arg(Words.cornerKeys)
    }
}
