// SPDX-License-Identifier: Apache-2.0
pragma Singleton
import QtQuick 2.15

/// Colours and sizes of all screens. Every ink has a contrast of 7:1 or more on its ground. Lengths
/// are pixels of a 10 inch screen of 1280x800, where 60 of them are 10 mm.
QtObject {
    readonly property color ground: "#0d1319"
    readonly property color panel: "#16202b"
    readonly property color raised: "#223244"
    readonly property color pressed: "#2c4158"
    readonly property color line: "#8ea3b8"

    readonly property color text: "#ffffff"
    readonly property color muted: "#d5dfe9"
    readonly property color accent: "#ffd54a"
    readonly property color accentInk: "#10151a"
    readonly property color danger: "#8a0f0f"
    readonly property color dangerInk: "#ffffff"
    readonly property color good: "#0b4f2a"
    readonly property color goodInk: "#ffffff"

    readonly property int touch: 60
    readonly property int gap: 12
    readonly property int radius: 8
    readonly property int frame: 3

    readonly property int smallFont: 17
    readonly property int font: 20
    readonly property int titleFont: 26
    readonly property int valueFont: 38
}
