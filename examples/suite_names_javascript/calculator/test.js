// Finds its objects by names that a module exports.

import * as names from "names";

function keys(text) {
    for (const key of text.split(" "))
        click(names.button(key));
}

export function main() {
    startApplication("calculator");

    test.startSection("Names are what the module exports");
    keys("7 + 5");
    click(names.equalsButton);
    test.expect(names.display, {text: "12"});
    test.endSection();

    test.startSection("and texts, as in verification points and expressions");
    click(":clearAllButton");
    test.expect(":display", {text: "0"});
    click("{type='Button' text='1' window=':window'}");
    test.expect("names.display", {text: "1"});
    test.endSection();

    test.startSection("What a name stands for, and the other way round");
    test.compare(objectMap.realName(":display"), "{type='QLineEdit' window={type='Calculator'}}");
    test.compare(objectMap.symbolicName(names.equalsButton), ":equalsButton");
    test.verify(objectMap.symbolicNames().includes(":window"));
    test.endSection();
}
