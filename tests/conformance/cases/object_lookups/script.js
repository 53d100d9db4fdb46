function main() {
    startApplication("widgets");
    const window = waitForObject({type: "Window"});
    test.verify(String(window) === String(findObject("{type='Window'}")));  // @same
    test.verify(object.exists("{type='QTabWidget'}"));  // @exists
    test.verify(!object.exists({type: "QTabWidget", objectName: "other"}));  // @not
    test.compare(findAllObjects("{type='QTabWidget'}").length, 1);  // @all
    test.compare(typeName(window), "Window");  // @type
    test.compare(object.properties(window).windowTitle, "Targets");  // @properties
    test.verify(object.parent(window) === null);  // @parent
}
