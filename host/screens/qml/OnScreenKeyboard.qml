// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Window 2.15
import QtQuick.VirtualKeyboard 2.15
import QtQuick.VirtualKeyboard.Settings 2.15
import "."

/// The keyboard for who has none, at the lower edge of the window while a field has the focus. It
/// moves itself out of here to the window, above every dialog.
InputPanel {
    id: panel

    property real windowWidth: 0
    property real windowHeight: 0
    readonly property Item focusItem: Window.activeFocusItem

    objectName: "keyboard"
    x: (windowWidth - width) / 2
    y: windowHeight - height
    z: 2000000
    width: 960      // its height follows: keys of a finger's size, and half of the window left
    visible: active

    Binding {
        target: VirtualKeyboardSettings
        property: "locale"
        value: project.language === "de" ? "de_DE" : "en_GB"
    }
    // What makes room for it moves when that changes. Not at once: it would change again what makes
    // it change, and the keyboard stay. Nor under a finger, whose button would be gone.
    Binding {
        target: Room
        property: "keyboardHeight"
        delayed: true
        value: panel.focusItem && panel.focusItem.pressed === true ? Room.keyboardHeight
             : panel.active ? panel.height : 0
    }
}
