"""A program of many windows: a dialog makes a form, another one an action in it."""

new_form = {"type": "NewForm"}


def main():
    startApplication("designer")
    selectItem({"type": "QTreeWidget", "window": new_form}, "templates/forms.Widget")
    click({"type": "QPushButton", "text": "Create"})
    test.expect({"type": "QMdiSubWindow"}, {"windowTitle*": "Form - *"})

    selectItem({"type": "QTabBar"}, "Action Editor")
    tools = {"type": "QToolBar", "container": {"type": "qdesigner_internal::ActionEditor"}}
    click({"type": "QToolButton", "text": "New", "container": tools})
    fill({"name": "editActionText"}, "&Greet")
    click({"type": "QPushButton", "text": "OK"})
    test.expect({"text": "action_Greet", "visible": True}, {"enabled": True})
