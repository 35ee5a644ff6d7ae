import QtQuick
import QtQuick.Layouts
import Vantry

/// A control with its label above it.
ColumnLayout {
    id: labelled

    required property string label

    spacing: Theme.space4

    Caption { text: labelled.label }
}
