// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import "."

/// A dialog over the whole window, or what the on-screen keyboard and a message leave of it. Escape
/// closes it. What it could not do is told by a message, which must be readable beside it.
Popup {
    id: card

    readonly property real covered: Math.max(Room.keyboardHeight, Room.messageHeight)
    readonly property real room: parent.height - covered    ///< for it, in height

    parent: Overlay.overlay
    anchors.centerIn: parent
    topMargin: 0
    bottomMargin: covered
    modal: true
    focus: true
    padding: 2 * Theme.gap
    closePolicy: Popup.CloseOnEscape
    Overlay.modal: Item {
        containmentMask: shade
        Rectangle {
            id: shade
            anchors { fill: parent; bottomMargin: Room.messageHeight }
            color: "#b0000000"
        }
    }
    background: Rectangle {
        color: Theme.panel
        radius: Theme.radius
        border.width: 1
        border.color: Theme.line
    }
}
