// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import "."

/// A dialog over the whole window, or what the on-screen keyboard leaves of it. Escape closes it.
Popup {
    id: card

    readonly property real room: parent.height - Room.keyboardHeight  ///< for it, in height

    parent: Overlay.overlay
    anchors.centerIn: parent
    topMargin: 0
    bottomMargin: Room.keyboardHeight
    modal: true
    focus: true
    padding: 2 * Theme.gap
    closePolicy: Popup.CloseOnEscape
    Overlay.modal: Rectangle {
        color: "#b0000000"
    }
    background: Rectangle {
        color: Theme.panel
        radius: Theme.radius
        border.width: 1
        border.color: Theme.line
    }
}
