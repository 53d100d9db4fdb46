import QtQuick 2.12
import QtQuick.Window 2.12

Window {
    visible: true
    width: 320
    height: 200
    title: "Greeter"

    TextInput {
        id: who
        objectName: "who"
        x: 20; y: 20; width: 280; height: 30
        font.pixelSize: 18
        focus: true
    }
    Rectangle {
        objectName: "greet"
        x: 20; y: 70; width: 120; height: 40
        radius: 6
        color: area.pressed ? "steelblue" : "lightsteelblue"
        Text { anchors.centerIn: parent; text: "Greet" }
        MouseArea {
            id: area
            anchors.fill: parent
            onClicked: greeting.text = "Hello, " + who.text
        }
    }
    Text {
        id: greeting
        objectName: "greeting"
        x: 20; y: 130
        font.pixelSize: 18
    }
}
