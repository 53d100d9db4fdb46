def main():
    startApplication("widgets")
    window = waitForObject({"type": "Window"})
    test.verify(window == findObject("{type='Window'}"))  # @same
    test.verify(object.exists("{type='QTabWidget'}"))  # @exists
    test.verify(not object.exists({"type": "QTabWidget", "objectName": "other"}))  # @not
    test.compare(len(findAllObjects("{type='QTabWidget'}")), 1)  # @all
    test.compare(typeName(window), "Window")  # @type
    test.compare(object.properties(window)["windowTitle"], "Targets")  # @properties
    test.verify(object.parent(window) is None)  # @parent
