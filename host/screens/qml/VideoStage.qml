// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import Xqosd 1.0
import "."

/// The running picture with its overlay, as it is recorded.
Item {
    id: stage

    readonly property rect pictureRect: picture.pictureRect

    Rectangle {
        anchors.fill: parent
        color: "black"
    }
    VideoView {
        id: picture
        anchors.fill: parent
    }
    OverlayView {
        id: overlayView
        anchors.fill: parent
        Component.onCompleted: liveOverlay.showIn(overlayView)
    }
    Connections {
        target: video
        enabled: stage.visible
        function onFrame(frame) { picture.showFrame(frame) }
    }
    Rectangle {     // so that it can be read over the overlay
        objectName: "noPicture"
        anchors.centerIn: parent
        visible: !video.running
        width: noPicture.implicitWidth + 4 * Theme.gap
        height: noPicture.implicitHeight + 2 * Theme.gap
        radius: Theme.radius
        color: Theme.panel
        AppText {
            id: noPicture
            anchors.centerIn: parent
            text: texts.noPicture
            font.pixelSize: Theme.titleFont
        }
    }
}
