// Lists whose items are made when they are shown, menus, and fields of Qt Quick Controls.
import QtQuick 2.15
import QtQuick.Controls 2.15

ApplicationWindow {
    id: window
    objectName: "main"
    title: "Lists"
    width: 600; height: 400
    visible: true
    property string log: ""
    function write(entry) { log += (log === "" ? "" : "|") + entry }

    menuBar: MenuBar {
        objectName: "menus"
        Menu {
            title: "&File"
            MenuItem { text: "&Open..."; onTriggered: window.write("open") }
            Menu {
                title: "Recent"
                MenuItem { text: "a.txt"; onTriggered: window.write("a.txt") }
            }
            MenuItem { text: "Locked"; enabled: false }
        }
        Menu {
            title: "&Edit"
            MenuItem { text: "Copy"; onTriggered: window.write("copy") }
        }
    }
    ListModel {
        id: rows
        Component.onCompleted: { for (let i = 0; i < 300; ++i) append({ label: "Row " + i }) }
    }
    ListView {
        objectName: "ofModel"
        width: 150; height: 200; clip: true
        model: rows
        delegate: ItemDelegate { width: 150; text: model.label; onClicked: window.write(text) }
    }
    ListView {
        objectName: "ofArray"
        x: 160; width: 150; height: 200; clip: true
        model: Array.from({ length: 200 }, (_, i) => "Entry " + i)
        delegate: Rectangle {
            width: 150; height: 30
            Text { text: modelData }
            MouseArea { anchors.fill: parent; onClicked: window.write(modelData) }
        }
    }
    ScrollView {
        objectName: "ofNumbers"
        x: 320; width: 150; height: 200; clip: true
        ListView {
            model: 150
            delegate: ItemDelegate { width: 150; text: "Number " + index; onClicked: window.write(text) }
        }
    }
    Column {
        y: 210
        SpinBox { objectName: "spin"; to: 1000; value: 5; editable: true }
        SpinBox { objectName: "fixedSpin"; value: 5 }
        ComboBox { objectName: "editable"; editable: true; model: ["one", "two"] }
        ComboBox { objectName: "long"; model: Array.from({ length: 80 }, (_, i) => "Choice " + i) }
    }
}
