// A Qt Quick scene that a person uses, for the tests of recordings. What happens is written, a line
// each, to the file that is given.

#include <QFile>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>

namespace {

constexpr char scene[] = R"(
import QtQuick 2.15
import QtQuick.Controls 2.15
ApplicationWindow {
    id: window
    title: "Shop 12:30"
    x: 40; y: 40; width: 520; height: 440
    visible: true
    onClosing: journal.write("closed: " + volume.value + ", " + amount.value + ", " + notes.text)
    menuBar: MenuBar {
        Menu {
            title: "&File"
            MenuItem { text: "&New"; onTriggered: journal.write("new") }
            MenuItem { text: "Save &As..."; onTriggered: journal.write("save") }
            Menu {
                title: "Recent"
                MenuItem { text: "v1.0"; onTriggered: journal.write("recent") }
            }
        }
    }
    Column {
        x: 10; y: 10; spacing: 4
        Button { text: "&Order"; onClicked: journal.write("order") }
        TextField { id: who; placeholderText: "Who"; onEditingFinished: journal.write("who " + text) }
        TextField {
            objectName: "secret"; echoMode: TextInput.Password
            onAccepted: journal.write("secret " + text)
        }
        CheckBox { text: "Fast"; onToggled: journal.write("fast " + checked) }
        ComboBox {
            objectName: "size"; model: ["small", "large", "v1.0"]
            onActivated: journal.write("size " + currentText)
        }
        Slider { id: volume; objectName: "volume"; from: 0; to: 10; stepSize: 1 }
        SpinBox { id: amount; objectName: "amount" }
    }
    ListView {
        objectName: "list"; x: 260; y: 10; width: 120; height: 120; clip: true
        model: ["one", "two", "three"]
        delegate: ItemDelegate {
            text: modelData; width: 120; onClicked: journal.write("item " + modelData)
        }
    }
    TextArea { id: notes; objectName: "notes"; x: 260; y: 150; width: 200; height: 60; text: "first" }
    Rectangle {
        objectName: "canvas"; x: 260; y: 230; width: 120; height: 90; color: "lightgray"
        MouseArea {
            objectName: "pad"; anchors.fill: parent; acceptedButtons: Qt.AllButtons
            onPressed: journal.write("pad " + mouse.x + "," + mouse.y)
            onClicked: if (mouse.button === Qt.RightButton) tools.popup()
        }
        Menu {
            id: tools
            MenuItem { text: "Erase"; onTriggered: journal.write("erase") }
            MenuItem { text: "Paint"; onTriggered: journal.write("paint") }
            onClosed: journal.write("menu closed")
        }
    }
}
)";

class Journal : public QObject {
    Q_OBJECT
public:
    explicit Journal(const QString& path) : m_file(path) {}
    bool open() { return m_file.open(QIODevice::WriteOnly); }
    Q_INVOKABLE void write(const QString& entry) {
        m_file.write(entry.toUtf8() + '\n');
        m_file.flush();
    }

private:
    QFile m_file;
};

}  // namespace

int main(int argc, char** argv) {
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    QGuiApplication application(argc, argv);
    Journal journal(QString::fromLocal8Bit(argc > 1 ? argv[1] : "/dev/null"));
    if (!journal.open())
        return 1;
    QQmlEngine engine;
    engine.rootContext()->setContextProperty(QStringLiteral("journal"), &journal);
    QQmlComponent component(&engine);
    component.setData(scene, QUrl("qrc:/scene.qml"));
    QObject* const window = component.create();
    if (!window)
        qFatal("%s", qPrintable(component.errorString()));
    const int code = QGuiApplication::exec();
    delete window;
    return code;
}

#include "recorderquick_target.moc"
