"""Gives an object a new name, in a map of its own: that of the suite stays as it is."""

import os
import tempfile


def main():
    startApplication("calculator")
    square_root = waitForObject("{type='Button' text='Sqrt'}")
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "names.py")
        with open(path, "w") as file:
            file.write("# Names of this case\nwindow = {'type': 'Calculator'}\n")
        objectMap.load(path)

        name = objectMap.add(square_root)
        test.compare(name, ":sqrt_button")
        with open(path) as file:
            test.log("The map now", file.read())
        test.compare(objectMap.add(square_root), name, "a second time nothing is written")
        click(name)
        test.verify(object.exists(name))
