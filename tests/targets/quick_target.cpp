// A Qt Quick scene, for the tests of what the agent sees of one.

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

namespace {

constexpr char scene[] = R"(
import QtQuick 2.15
import QtQuick.Window 2.15
Window {
    title: "Scene"
    width: 300; height: 200
    visible: true
    Rectangle {
        id: button
        property string text: "Press"
        property int presses: 0
        x: 20; y: 30; width: 100; height: 40
        color: "steelblue"
        Text { text: "Press label"; anchors.centerIn: parent }
        MouseArea { anchors.fill: parent; onClicked: ++button.presses }
    }
    Flickable {
        x: 150; width: 100; height: 100; contentHeight: 1000; clip: true
        Rectangle { objectName: "far"; y: 800; width: 50; height: 50 }
    }
    Rectangle { objectName: "gone"; visible: false; width: 5; height: 5 }
    TextInput { y: 150; width: 100; height: 20; echoMode: TextInput.Password; text: "hunter2"; focus: true }
}
)";

}  // namespace

int main(int argc, char** argv) {
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(scene, QUrl("qrc:/scene.qml"));
    QObject* const window = component.create();
    if (!window)
        qFatal("%s", qPrintable(component.errorString()));
    return QGuiApplication::exec();
}
