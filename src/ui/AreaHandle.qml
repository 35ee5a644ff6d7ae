pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.impl
import Vantry

/// What an area is dragged by: a side, a corner, or with no side the whole of it.
MouseArea {
    id: handle

    required property int edges
    required property AreaSelection selection

    /// In the parent.
    required property rect area

    readonly property bool moves: edges === AreaSelection.NoEdge
    readonly property bool isLeft: edges & AreaSelection.LeftEdge
    readonly property bool isRight: edges & AreaSelection.RightEdge
    readonly property bool isTop: edges & AreaSelection.TopEdge
    readonly property bool isBottom: edges & AreaSelection.BottomEdge
    property point from

    x: area.x + area.width * (isLeft ? 0 : isRight ? 1 : 0.5) - width / 2
    y: area.y + area.height * (isTop ? 0 : isBottom ? 1 : 0.5) - height / 2
    width: Theme.target
    height: Theme.target
    preventStealing: true
    hoverEnabled: true
    cursorShape: moves ? Qt.SizeAllCursor : isLeft && isTop || isRight && isBottom ? Qt.SizeFDiagCursor
        : isLeft && isBottom || isRight && isTop ? Qt.SizeBDiagCursor : isLeft || isRight ? Qt.SizeHorCursor : Qt.SizeVerCursor
    onPressed: event => from = mapToItem(parent, event.x, event.y)
    onPositionChanged: event => {
        if (!pressed)
            return;
        const now = mapToItem(parent, event.x, event.y);
        selection.drag(edges, Qt.point(now.x - from.x, now.y - from.y), Qt.size(parent.width, parent.height));
    }
    onReleased: selection.endDrag()
    onCanceled: selection.cancelDrag()

    Rectangle {
        anchors.centerIn: parent
        width: handle.moves ? Theme.target : Theme.handle
        height: width
        radius: handle.moves ? width / 2 : Theme.areaLine
        color: handle.containsMouse || handle.pressed ? Theme.accentHover : Theme.accentBlue
        border.color: Theme.accentInk

        IconImage {
            anchors.centerIn: parent
            visible: handle.moves
            source: "qrc:/icons/move.svg"
            color: Theme.accentInk
            sourceSize { width: Theme.icon; height: Theme.icon }
        }
    }
}
