// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import QtQuick.Layouts 1.15
import Xqosd 1.0
import "."

/// What the operator sees while the camera is in the pipe.
ColumnLayout {
    id: screen

    readonly property bool recording: video.recordState === VideoController.Recording
    spacing: Theme.gap

    VideoStage {
        objectName: "liveStage"
        Layout.fillWidth: true
        Layout.fillHeight: true

        Rectangle {
            visible: screen.recording
            anchors { right: parent.right; top: parent.top; margins: Theme.gap }
            width: badge.implicitWidth + 2 * Theme.gap
            height: badge.implicitHeight + Theme.gap
            radius: Theme.radius
            color: Theme.danger
            AppText {
                id: badge
                anchors.centerIn: parent
                text: "\u25CF " + texts.recording + " " + video.recordedTime
                color: Theme.dangerInk
                font.bold: true
            }
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.gap
        Layout.rightMargin: Theme.gap
        Layout.bottomMargin: Theme.gap
        spacing: Theme.gap

        component Reading: ColumnLayout {
            property alias label: name.text
            property alias value: number.text
            property alias valueName: number.objectName
            spacing: 0
            AppText {
                id: name
                color: Theme.muted
                font.pixelSize: Theme.smallFont
            }
            AppText {
                id: number
                font.pixelSize: Theme.valueFont
                wrapMode: Text.NoWrap
            }
        }
        Reading {
            Layout.preferredWidth: 190
            label: texts.distance
            value: video.distance
            valueName: "distance"
        }
        Reading {
            Layout.preferredWidth: 240
            label: texts.speed
            value: video.speed
            valueName: "speed"
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            AppText {
                text: texts.inspection
                color: Theme.muted
                font.pixelSize: Theme.smallFont
            }
            AppText {
                Layout.fillWidth: true
                objectName: "inspectionName"
                text: project.inspectionName === "" ? texts.noInspection : project.inspectionName
                font.pixelSize: project.inspectionName === "" ? Theme.smallFont : Theme.font
                elide: Text.ElideRight
                maximumLineCount: 3
            }
        }
        SwitchRow {
            objectName: "osdSwitch"
            Layout.preferredWidth: 160
            text: texts.osd
            checked: video.overlayEnabled
            onToggled: video.overlayEnabled = checked
        }
        AppButton {
            objectName: "observationButton"
            implicitHeight: 84
            symbol: "+"
            text: texts.observation
            enabled: project.inspectionIndex >= 0
            onClicked: observation.open()
        }
        AppButton {
            objectName: "recordButton"
            implicitHeight: 84
            implicitWidth: 190
            symbol: screen.recording ? "\u25A0" : "\u25CF"
            text: screen.recording ? texts.stop
                : video.recordState === VideoController.Finishing ? texts.finishing : texts.record
            fill: Theme.danger
            ink: Theme.dangerInk
            enabled: video.recordState !== VideoController.Finishing && (screen.recording || video.running)
            onClicked: {
                if (settling.running)   // the second touch of a trembling finger
                    return
                settling.restart()
                screen.recording ? video.stopRecording() : video.startRecording()
            }
            Timer {
                id: settling
                interval: 1000
            }
        }
    }
    ObservationCard {
        id: observation
        objectName: "observation"
    }
}
