function main() {
    startApplication("widgets");
    test.expect("{type='Window'}", {windowTitle: "Targets", visible: true});  // @holds
    test.expect("{type='Window'}", {"windowTitle*": "Tar*"}, undefined, "with a wildcard");  // @comment
}
