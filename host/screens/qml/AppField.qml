// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import "."

TextField {
    id: control

    implicitHeight: Theme.touch
    leftPadding: Theme.gap
    rightPadding: Theme.gap
    font.pixelSize: Theme.font
    color: Theme.text
    placeholderTextColor: Theme.muted
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentInk
    selectByMouse: true
    activeFocusOnTab: true
    background: Rectangle {
        radius: Theme.radius
        color: Theme.ground
        border.width: control.activeFocus ? Theme.frame : 1
        border.color: control.activeFocus ? Theme.accent : Theme.line
    }
}
