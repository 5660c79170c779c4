// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import "."

/// One of a few texts, each a button, with the name of the choice over them.
ColumnLayout {
    id: row

    property string label: ""
    property var choices: []        ///< texts
    property int current: -1
    signal chosen(int index)

    spacing: 4

    AppText {
        text: row.label
        visible: text !== ""
    }
    Flow {
        Layout.fillWidth: true
        spacing: Theme.gap / 2
        Repeater {
            model: row.choices
            AppButton {
                objectName: row.objectName + index
                text: modelData
                checked: row.current === index
                symbol: checked ? "\u2713" : ""
                onClicked: row.chosen(index)
            }
        }
    }
}
