// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import "."

/// A switch with its name. On and off differ in place and sign, not by colour alone.
Switch {
    id: control

    implicitHeight: Theme.touch
    padding: 0
    font.pixelSize: Theme.font
    activeFocusOnTab: true
    opacity: enabled ? 1 : 0.4
    Keys.onReturnPressed: {
        if (!event.isAutoRepeat) {
            toggle()
            toggled()
        }
    }

    indicator: Rectangle {
        x: control.width - width
        anchors.verticalCenter: parent.verticalCenter
        width: 92
        height: 44
        radius: height / 2
        color: control.checked ? Theme.accent : Theme.ground
        border.width: control.visualFocus ? Theme.frame : 1
        border.color: control.visualFocus ? Theme.text : Theme.line
        Text {
            anchors.verticalCenter: parent.verticalCenter
            x: control.checked ? 16 : parent.width - width - 16
            text: control.checked ? "\u2713" : "\u2715"
            font.pixelSize: Theme.font
            color: control.checked ? Theme.accentInk : Theme.text
        }
        Rectangle {
            x: control.checked ? parent.width - width - 5 : 5
            anchors.verticalCenter: parent.verticalCenter
            width: 34
            height: 34
            radius: 17
            color: control.checked ? Theme.accentInk : Theme.text
        }
    }
    contentItem: Text {
        rightPadding: 92 + Theme.gap
        text: control.text
        font: control.font
        color: Theme.text
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    background: Rectangle {
        color: "transparent"
    }
}
