// SPDX-License-Identifier: Apache-2.0
import QtQuick 2.15
import "."

/// The live picture with the grid. Elements are selected and dragged here; a small one is hit from
/// a finger's breadth away.
VideoStage {
    id: stage

    property bool showMarks: true   ///< grid and boxes
    readonly property real scaling: editor.pictureSize.width > 0
        ? stage.pictureRect.width / editor.pictureSize.width : 0
    readonly property real cellWidth: editor.cellWidth * scaling
    readonly property real cellHeight: editor.cellHeight * scaling

    function gridX(column) { return stage.pictureRect.x + (editor.grid.x + column * editor.cellWidth) * stage.scaling }
    function gridY(row) { return stage.pictureRect.y + (editor.grid.y + row * editor.cellHeight) * stage.scaling }

    Repeater {
        model: stage.showMarks && stage.cellWidth > 0 ? Math.round(editor.grid.width / editor.cellWidth) + 1 : 0
        Rectangle {
            x: stage.gridX(index)
            y: stage.gridY(0)
            width: 1
            height: editor.grid.height * stage.scaling
            color: index % 9 === 0 ? "#80ffffff" : "#26ffffff"
        }
    }
    Repeater {
        model: stage.showMarks && stage.cellHeight > 0 ? Math.round(editor.grid.height / editor.cellHeight) + 1 : 0
        Rectangle {
            x: stage.gridX(0)
            y: stage.gridY(index)
            width: editor.grid.width * stage.scaling
            height: 1
            color: index % 9 === 0 ? "#80ffffff" : "#26ffffff"
        }
    }
    Repeater {
        id: boxes
        model: stage.visible ? elements : null   // nobody else follows every value
        Item {
            id: box
            readonly property var element: manager.getElement(index)
            readonly property bool isSelected: element !== null && editor.selected === element
            objectName: "element" + index
            visible: stage.showMarks && element !== null && (element.enabled || isSelected)
            x: element ? stage.gridX(element.column) : 0
            y: element ? stage.gridY(element.row) : 0
            z: isSelected ? 1 : 0
            width: element ? Math.max(element.width * stage.scaling, 4 * stage.cellWidth) : 0
            height: element ? Math.max(element.height * stage.scaling, stage.cellHeight) : 0
            Rectangle {
                anchors { fill: parent; margins: box.isSelected ? -Theme.frame : 0 }
                color: "transparent"
                border.width: box.isSelected ? Theme.frame : 1
                border.color: box.isSelected ? Theme.accent : "#b0ffffff"
            }
        }
    }
    MouseArea {
        property point start
        property bool moving: false

        objectName: "editorArea"
        anchors.fill: parent
        preventStealing: true
        onPressed: {
            stage.parent.forceActiveFocus()
            start = Qt.point(mouse.x, mouse.y)
            moving = editor.selectAt((mouse.x - stage.pictureRect.x) / stage.scaling,
                                     (mouse.y - stage.pictureRect.y) / stage.scaling,
                                     Theme.touch / 2 / stage.scaling)
            if (moving)
                editor.beginDrag()
        }
        onPositionChanged: {
            if (moving)
                editor.dragTo(Math.round((mouse.x - start.x) / stage.cellWidth),
                              Math.round((mouse.y - start.y) / stage.cellHeight))
        }
        onReleased: {
            if (moving)
                editor.endDrag()
            moving = false
        }
        onCanceled: {
            if (moving)
                editor.endDrag()
            moving = false
        }
    }
    Rectangle {
        id: handle

        readonly property var element: editor.selectedIsPicture ? editor.selected : null
        readonly property real cornerX: element ? stage.gridX(element.column) + element.width * stage.scaling : 0
        readonly property real cornerY: element ? stage.gridY(element.row) + element.height * stage.scaling : 0

        objectName: "resizeHandle"
        visible: stage.showMarks && element !== null && element.imageSrcWidth > 0
        // Outside of the picture's corner, so that a small picture can still be dragged itself.
        x: Math.min(cornerX - radius, stage.width - width)
        y: Math.min(cornerY - radius, stage.height - height)
        width: Theme.touch
        height: Theme.touch
        radius: Theme.radius
        color: Theme.accent
        AppText {
            anchors.centerIn: parent
            text: "\u2921"
            font.pixelSize: Theme.titleFont
            color: Theme.accentInk
        }
        MouseArea {
            property point start
            property point corner

            anchors.fill: parent
            preventStealing: true
            onPressed: {
                stage.parent.forceActiveFocus()
                start = mapToItem(stage, mouse.x, mouse.y)
                corner = Qt.point(handle.cornerX, handle.cornerY)
                editor.beginDrag()
            }
            onPositionChanged: {
                const now = mapToItem(stage, mouse.x, mouse.y)
                editor.pullCornerTo((corner.x + now.x - start.x - stage.pictureRect.x) / stage.scaling,
                                    (corner.y + now.y - start.y - stage.pictureRect.y) / stage.scaling)
            }
            onReleased: editor.endDrag()
            onCanceled: editor.endDrag()
        }
    }
}
