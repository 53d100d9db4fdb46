// The same as states_target: the property "wanted" of the window "main", "hidden box", brings the
// object of that name into the state; an empty one makes all objects anew. What is done to them
// stands in the property "log", each thing once.

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15

Window {
    id: main
    objectName: "main"
    title: "Main"
    x: 20; y: 100; width: 300; height: 320
    visible: true

    property string wanted
    property string log
    property var stage
    property var beside
    property var target

    function write(entry) {
        if (log.indexOf(entry) < 0)
            log += (log === "" ? "" : "|") + entry
    }

    // An item below another one.
    function find(item, name) {
        for (var i = 0; i < item.children.length; ++i) {
            var child = item.children[i]
            var found = child.objectName === name ? child : find(child, name)
            if (found)
                return found
        }
        return null
    }

    function makeAnew() {
        mover.stop()
        vanisher.stop()
        if (beside)
            beside.destroy()
        if (stage)
            stage.destroy()
        log = ""
        beside = null
        stage = stageWindow.createObject(null)
    }

    function remove(object) {
        if (object === stage) {
            stage = null
            object.destroy()
        } else {
            object.parent.active = false
        }
    }

    function makeBeside(component) {
        beside = component.createObject(null)
    }

    function enter(state, name) {
        target = name === "stage" ? stage : find(stage.contentItem, name)
        switch (state) {
        case "gone":
            remove(target)
            break
        case "vanishing":
            target.visible = false
            vanisher.start()
            break
        case "hidden":
            target.visible = false
            break
        case "disabled":
            target.enabled = false
            break
        case "moving":
            mover.start()
            break
        case "covered":
            cover.createObject(stage.contentItem)
            break
        case "blocked":
            makeBeside(modalWindow)
            break
        case "behind":
            makeBeside(otherWindow)
            break
        case "overlaid":
            makeBeside(overlayWindow)
            break
        }
    }

    onWantedChanged: {
        var words = wanted.split(" ")
        if (wanted === "")
            makeAnew()
        else
            enter(words[0], words[1])
    }
    Component.onCompleted: makeAnew()

    Timer { id: vanisher; interval: 150; onTriggered: main.remove(main.target) }
    Timer {
        id: mover
        interval: 4
        repeat: true
        onTriggered: main.target.x = main.target.x >= 60 ? 0 : main.target.x + 1
    }

    Component {
        id: cover
        Rectangle {
            objectName: "cover"
            z: 100
            anchors.fill: parent
            MouseArea { anchors.fill: parent }
        }
    }
    Component {
        id: modalWindow
        Window {
            title: "Modal"
            x: 20; y: 500; width: 100; height: 100
            modality: Qt.ApplicationModal
            visible: true
        }
    }
    Component {
        id: otherWindow
        Window {
            x: 400; y: 100; width: 300; height: 320
            visible: true
            Component.onCompleted: requestActivate()
        }
    }
    Component {
        id: overlayWindow
        Window {
            title: "Overlay"
            x: 400; y: 100; width: 300; height: 320
            flags: Qt.Window | Qt.WindowStaysOnTopHint
            visible: true
        }
    }

    // Each object is in a Loader, which can delete it.
    Component {
        id: stageWindow
        Window {
            objectName: "stage"
            title: "Stage"
            x: 400; y: 100; width: 300; height: 320
            visible: true
            onClosing: main.write("closed")
            Loader {
                sourceComponent: MenuBar {
                    objectName: "bar"
                    Menu {
                        title: "Menu"
                        MenuItem { text: "Two"; onTriggered: main.write("selected") }
                    }
                }
            }
            Loader {
                x: 10; y: 50
                sourceComponent: Button {
                    objectName: "button"
                    text: "Push"
                    onClicked: main.write("pushed")
                    onDoubleClicked: main.write("pushed")
                }
            }
            Loader {
                x: 150; y: 50
                sourceComponent: Rectangle {
                    objectName: "spot"
                    width: 100; height: 30
                    HoverHandler { onHoveredChanged: if (hovered) main.write("entered") }
                }
            }
            Loader {
                x: 10; y: 100
                sourceComponent: TextField {
                    objectName: "field"
                    width: 100
                    text: "old"
                    onTextEdited: main.write("edited")
                }
            }
            Loader {
                x: 10; y: 150
                sourceComponent: CheckBox {
                    objectName: "box"
                    text: "Box"
                    onToggled: main.write("toggled")
                }
            }
            Loader {
                x: 150; y: 150
                sourceComponent: CheckBox {
                    objectName: "ticked"
                    text: "Ticked"
                    checked: true
                    onToggled: main.write("toggled")
                }
            }
            Loader {
                x: 10; y: 200
                sourceComponent: ListView {
                    objectName: "list"
                    width: 100; height: 100
                    model: ["One", "Two"]
                    delegate: Text {
                        width: 100; height: 30
                        text: modelData
                        MouseArea { anchors.fill: parent; onClicked: main.write("selected") }
                    }
                }
            }
            Loader {
                x: 150; y: 200
                sourceComponent: ComboBox {
                    objectName: "combo"
                    model: ["One", "Two"]
                    onActivated: main.write("selected")
                }
            }
        }
    }
}
