def handler():
    raise ValueError("in the handler")  # @handler


def main():
    startApplication("widgets")
    window = waitForObject("{type='Window'}")
    installEventHandler("Window", "WindowTitleChange", "handler")
    window.windowTitle = "another"
    snooze(0.3)
    test.log("it goes on")  # @on
