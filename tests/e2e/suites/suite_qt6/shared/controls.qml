import QtQuick
import QtQuick.Controls

ApplicationWindow {
    visible: true
    width: 320
    height: 260
    title: "Controls"

    menuBar: MenuBar {
        Menu {
            title: "&File"
            Action { text: "&Rename"; onTriggered: result.text = "renamed" }
        }
    }
    Column {
        spacing: 8
        TextField { objectName: "who" }
        CheckBox { text: "&Loud"; objectName: "loud" }
        ComboBox { objectName: "colour"; model: ["red", "green", "blue"] }
        Button {
            text: "&Greet"
            onClicked: result.text = who() + (loud() ? "!" : "")
            function who() { return parent.children[0].text }
            function loud() { return parent.children[1].checked }
        }
        Label { id: result; objectName: "result" }
    }
}
