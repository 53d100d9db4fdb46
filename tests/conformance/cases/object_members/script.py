def main():
    startApplication("widgets")
    window = waitForObject("{type='Window'}")
    test.compare(window.windowTitle, "Targets")  # @read
    window.windowTitle = "\u00c4nderung"
    test.compare(window.windowTitle, "\u00c4nderung")  # @written
    test.verify(window.visible)  # @flag
    test.compare(window.spread("Wide", 2), "widewide")  # @method
    test.verify(window.geometry.width > 100)  # @nested
