pragma ComponentBehavior: Bound

import QtQuick
import Vantry

/// Opens the menu of ways back, and closes it again.
StudioButton {
    id: button

    required property BackMenu menu
    required property HudTip tip
    required property bool narrow
    property bool wasOpen: false

    text: narrow ? "" : Accessible.name
    icon.source: "qrc:/icons/rotate-ccw.svg"
    Accessible.name: qsTr("Back")
    Accessible.role: Accessible.ButtonMenu
    Accessible.description: help.text

    // By the time of the click the press has closed the menu.
    onPressed: wasOpen = menu.visible
    onClicked: {
        if (!wasOpen)
            menu.open(button);
        wasOpen = false;
    }

    HudHelp {
        id: help

        tip: button.tip
        text: qsTr("Stop and review from a bit earlier — retake or add a bubble there")
    }
}
