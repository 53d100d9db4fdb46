def main():
    startApplication("widgets")
    window = waitForObject("{type='Window'}")
    seen = []
    installEventHandler("Window", "WindowTitleChange", lambda: seen.append(1))
    window.windowTitle = "another"
    test.verify(waitFor(lambda: len(seen) > 0, 5000))  # @seen
