// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// A whole number with its name, changed by steps. Does not change the number itself: it asks.
RowLayout {
    id: row

    property string label: ""
    property string suffix: ""
    property int value: 0
    property int from: 0
    property int to: 100
    property int step: 1
    signal changed(int value)

    spacing: 4

    AppText {
        Layout.fillWidth: true
        text: row.label
        wrapMode: Text.WordWrap
        elide: Text.ElideRight
        maximumLineCount: 2
    }
    AppButton {
        objectName: row.objectName + "Less"
        text: "\u2212"
        autoRepeat: true
        enabled: row.value > row.from
        onClicked: row.changed(Math.max(row.from, row.value - row.step))
    }
    AppText {
        Layout.preferredWidth: 74
        text: row.value + row.suffix
        horizontalAlignment: Text.AlignHCenter
    }
    AppButton {
        objectName: row.objectName + "More"
        text: "+"
        autoRepeat: true
        enabled: row.value < row.to
        onClicked: row.changed(Math.min(row.to, row.value + row.step))
    }
}
