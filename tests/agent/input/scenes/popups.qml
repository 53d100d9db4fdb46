// Popups of every kind over one button.
import QtQuick 2.15
import QtQuick.Controls 2.15

ApplicationWindow {
    id: window
    objectName: "main"
    title: "Popups"
    width: 400; height: 300
    visible: true
    property string log: ""
    function write(entry) { log += (log === "" ? "" : "|") + entry }
    function setOpen(name, isOpen) {
        const popups = { popup: popup, menu: menu, toolTip: toolTip, dialog: dialog, drawer: drawer }
        popups[name].visible = isOpen
    }

    Button { objectName: "behind"; x: 10; y: 10; text: "&Behind"; onClicked: window.write("behind") }
    Button { objectName: "covered"; x: 210; y: 110; text: "Covered"; onClicked: window.write("covered") }

    Popup {
        id: popup
        x: 200; y: 100; width: 120; height: 80
        closePolicy: Popup.NoAutoClose
        Button { objectName: "inPopup"; text: "In"; onClicked: window.write("inPopup") }
    }
    Menu {
        id: menu
        x: 200; y: 100
        closePolicy: Popup.NoAutoClose
        MenuItem { objectName: "entry"; text: "&Entry"; onTriggered: window.write("entry") }
    }
    ToolTip { id: toolTip; x: 200; y: 100; text: "A tip of some length\nand of several lines\nabove the button" }
    Dialog {
        id: dialog
        modal: true
        title: "Sure?"
        x: 100; y: 100
        standardButtons: Dialog.Yes
        onAccepted: window.write("yes")
        Button { objectName: "inDialog"; text: "Other"; onClicked: window.write("inDialog") }
    }
    Drawer {
        id: drawer
        width: 100; height: window.height
        Button { objectName: "inDrawer"; text: "Drawn"; onClicked: window.write("inDrawer") }
    }
}
