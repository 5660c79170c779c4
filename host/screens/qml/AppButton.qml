// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Controls 2.15
import "."

/// A button as large as a finger. The keyboard's focus is a frame around it.
Button {
    id: control

    property color fill: Theme.raised
    property color ink: Theme.text
    property string symbol: ""
    property int align: Text.AlignHCenter
    property bool everyTouchCounts: autoRepeat   ///< also the second of two quick ones

    implicitHeight: Theme.touch
    implicitWidth: Math.max(Theme.touch, implicitContentWidth + 2 * Theme.gap)
    padding: 4
    font.pixelSize: Theme.font
    font.bold: checked          // what is chosen is not told by its colour alone
    opacity: enabled ? 1 : 0.4
    activeFocusOnTab: true
    // A held key is one press, unless a held finger is more than one, too.
    Keys.onReturnPressed: { if (!event.isAutoRepeat || autoRepeat) clicked() }
    Keys.onEnterPressed: { if (!event.isAutoRepeat || autoRepeat) clicked() }
    // Where a finger comes as a mouse, the second of two quick touches would be no click.
    onDoubleClicked: { if (everyTouchCounts) clicked() }
    // Being checked makes a button checkable; touched again, it would look as if it were not chosen.
    onCheckableChanged: checkable = false

    contentItem: Text {
        text: control.symbol === "" ? control.text
            : control.text === "" ? control.symbol : control.symbol + "  " + control.text
        font: control.font
        fontSizeMode: Text.HorizontalFit    // smaller letters before fewer
        minimumPixelSize: 14
        color: control.checked ? Theme.accentInk : control.ink
        horizontalAlignment: control.align
        leftPadding: control.align === Text.AlignLeft ? Theme.gap : 0
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.checked ? Theme.accent : control.down ? Theme.pressed : control.fill
        border.width: control.visualFocus ? Theme.frame : 1
        border.color: control.visualFocus ? Theme.accent : Theme.line
        Rectangle {
            anchors.fill: parent
            anchors.margins: Theme.frame
            radius: Theme.radius - 2
            visible: control.visualFocus
            color: "transparent"
            border.width: 1
            border.color: Theme.ground
        }
    }
}
