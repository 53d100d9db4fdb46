// The buttons of a calculator.

export function press(keys) {
    for (const key of keys.split(" "))
        click({type: "Button", text: key, window: ":Calculator"});
}
