// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import "."

/// A text of several lines; grows with it. Tab leaves it, as it leaves a field.
TextArea {
    id: control

    implicitHeight: Math.max(2 * Theme.touch, contentHeight + topPadding + bottomPadding)
    padding: Theme.gap
    font.pixelSize: Theme.font
    color: Theme.text
    placeholderTextColor: Theme.muted
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentInk
    selectByMouse: true
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.WrapAtWordBoundaryOrAnywhere
    activeFocusOnTab: true
    KeyNavigation.priority: KeyNavigation.BeforeItem
    Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
    background: Rectangle {
        radius: Theme.radius
        color: Theme.ground
        border.width: control.activeFocus ? Theme.frame : 1
        border.color: control.activeFocus ? Theme.accent : Theme.line
    }
}
