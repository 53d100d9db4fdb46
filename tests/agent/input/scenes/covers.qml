// Targets below what may cover them. Each target writes its name when it is clicked.
import QtQuick 2.15
import QtQuick.Window 2.15
import QtQuick.Controls 2.15

ApplicationWindow {
    id: window
    objectName: "main"
    title: "Covers"
    width: 500; height: 400
    visible: true
    property string log: ""
    function write(entry) { log += (log === "" ? "" : "|") + entry }

    component Target: Rectangle {
        property string name
        width: 60; height: 40
        color: "lightblue"
        default property alias covers: holder.data
        MouseArea { objectName: name; anchors.fill: parent; onClicked: window.write(name) }
        Item { id: holder; anchors.fill: parent }
    }

    // Never opened: its window's overlay is there all the same.
    Drawer { width: 50; height: window.height }

    Flow {
        anchors.fill: parent
        spacing: 5
        Target { name: "rectangle"; Rectangle { anchors.fill: parent } }
        Target { name: "label"; Label { anchors.fill: parent; text: "above" } }
        Target { name: "area"; MouseArea { anchors.fill: parent } }
        Target { name: "noButtons"; MouseArea { anchors.fill: parent; acceptedButtons: Qt.NoButton } }
        Target { name: "rightOnly"; MouseArea { anchors.fill: parent; acceptedButtons: Qt.RightButton } }
        Target { name: "disabledArea"; MouseArea { anchors.fill: parent; enabled: false } }
        Target { name: "disabledItem"; Item { anchors.fill: parent; enabled: false; MouseArea { anchors.fill: parent } } }
        Target { name: "invisible"; MouseArea { anchors.fill: parent; visible: false } }
        Target { name: "transparent"; MouseArea { anchors.fill: parent; opacity: 0 } }
        Target { name: "composed"; MouseArea { anchors.fill: parent; propagateComposedEvents: true } }
        Target { name: "composedTaken"; MouseArea { anchors.fill: parent; propagateComposedEvents: true; onClicked: {} } }
        Target { name: "hoverHandler"; Rectangle { anchors.fill: parent; HoverHandler {} } }
        Target { name: "tapHandler"; Rectangle { anchors.fill: parent; TapHandler {} } }
        Target { name: "tapTaken"; Rectangle { anchors.fill: parent; TapHandler { gesturePolicy: TapHandler.WithinBounds } } }
        Target { name: "tapDisabled"; Rectangle { anchors.fill: parent; TapHandler { enabled: false; gesturePolicy: TapHandler.WithinBounds } } }
        Target { name: "dragHandler"; Rectangle { anchors.fill: parent; DragHandler {} } }
        Target {
            name: "masked"
            MouseArea { anchors.fill: parent; containmentMask: QtObject { function contains(point: point) : bool { return point.x >= 0 && point.x < 5 && point.y >= 0 && point.y < 40 } } }
        }
        Target { name: "pointHandler"; Rectangle { anchors.fill: parent; PointHandler {} } }
        Target { name: "wheelHandler"; Rectangle { anchors.fill: parent; WheelHandler {} } }
        Target { name: "pinchHandler"; Rectangle { anchors.fill: parent; PinchHandler {} } }
        Target { name: "tapRight"; Rectangle { anchors.fill: parent; TapHandler { acceptedButtons: Qt.RightButton } } }
        Target { name: "flickable"; Flickable { anchors.fill: parent } }
        Target { name: "still"; Flickable { anchors.fill: parent; interactive: false } }
        Target { name: "touchArea"; MultiPointTouchArea { anchors.fill: parent } }
        Target { name: "pane"; Pane { anchors.fill: parent } }
        Target { name: "button"; Button { anchors.fill: parent } }
        Target { name: "clipped"; Item { width: 10; height: 10; clip: true; MouseArea { width: 60; height: 40 } } }
    }
    // The whole window is clickable: what is above must still be told from it.
    background: MouseArea { onClicked: window.write("background") }
    Rectangle {
        objectName: "tapped"
        y: 350; width: 60; height: 40
        TapHandler { onTapped: window.write("tapped") }
    }
    Rectangle {
        objectName: "rightClicked"
        x: 100; y: 350; width: 60; height: 40
        MouseArea { anchors.fill: parent; acceptedButtons: Qt.RightButton; onClicked: window.write("right") }
    }
}
