// A Qt Quick scene that takes input.

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

namespace {

constexpr char scene[] = R"(
import QtQuick 2.15
import QtQuick.Window 2.15
import QtQuick.Controls 2.15
Window {
    objectName: "main"
    title: "Scene"
    width: 400; height: 300
    visible: true
    property string log: ""
    function write(entry) { log += (log === "" ? "" : "|") + entry }
    Rectangle {
        objectName: "pad"
        x: 10; y: 10; width: 80; height: 40
        color: sensor.containsMouse ? "red" : "blue"
        MouseArea {
            id: sensor
            anchors.fill: parent
            hoverEnabled: true
            acceptedButtons: Qt.AllButtons
            onClicked: write("click " + mouse.x + "," + mouse.y + " " + mouse.button)
            onDoubleClicked: write("double")
        }
    }
    TextInput { objectName: "input"; x: 10; y: 60; width: 150; height: 20; text: "old" }
    TextInput { objectName: "fixed"; x: 170; y: 60; width: 50; height: 20; readOnly: true; text: "stays" }
    TextArea { objectName: "area"; x: 10; y: 90; width: 150; height: 50; text: "old" }
    CheckBox { objectName: "check"; x: 10; y: 150; text: "Check" }
    ComboBox { objectName: "combo"; x: 10; y: 200; model: ["First", "Second", "Third"] }
    Rectangle { objectName: "hidden"; x: 300; y: 10; width: 50; height: 50
        MouseArea { anchors.fill: parent; onClicked: write("hidden") } }
    Rectangle { objectName: "cover"; x: 270; y: 5; width: 40; height: 70; color: "gray"
        MouseArea { anchors.fill: parent } }
    Flickable {
        x: 250; y: 100; width: 100; height: 100; contentHeight: 1000; clip: true
        Rectangle { objectName: "far"; y: 800; width: 50; height: 50
            MouseArea { anchors.fill: parent; onClicked: write("far") } }
    }
}
)";

}  // namespace

int main(int argc, char** argv) {
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(scene, QUrl("qrc:/scene.qml"));
    const QObject* const window = component.create();
    if (window == nullptr)
        qFatal("%s", qPrintable(component.errorString()));
    return QGuiApplication::exec();
}
