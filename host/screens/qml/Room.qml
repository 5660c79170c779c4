// SPDX-License-Identifier: Apache-2.0
pragma Singleton
import QtQuick 2.15

/// What of the window is covered.
QtObject {
    property real keyboardHeight: 0     ///< of the on-screen keyboard; 0 while there is none
    property real messageHeight: 0      ///< of the line at the bottom; 0 while there is none
}
