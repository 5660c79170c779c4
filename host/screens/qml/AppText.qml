// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import "."

Text {
    color: Theme.text
    font.pixelSize: Theme.font
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
}
