"""Files beside the application."""

import os


def main():
    startApplication("calculator")
    folder = os.path.join(currentApplicationContext().cwd(), "tamrix-testdata")
    try:
        path = testData.put("people.tsv")
        test.compare(path, os.path.join(folder, "people.tsv"))
        with open(findFile("testdata", "people.tsv"), "rb") as source, open(path, "rb") as copy:
            test.verify(source.read() == copy.read())
        test.compare(testData.exists("people.tsv"), True)
        os.rename(path, os.path.join(folder, "renamed"))
        testData.get("renamed")
        test.verify(os.path.getsize("renamed") > 40)
        test.compare(testData.remove("renamed"), True)
        test.compare(testData.remove("renamed"), False)

        os.symlink("/etc", os.path.join(folder, "link"))
        for name, text in [
            ("../x", "leads out of the folder"),
            ("/etc/passwd", "absolute path"),
            ("link/passwd", "leads out of the folder"),
            ("", "has no name"),
        ]:
            try:
                testData.exists(name)
            except RuntimeError as error:
                test.verify(text in str(error), str(error))
            else:
                test.fail("nothing was raised", name)
        try:
            testData.get("../x")
        except RuntimeError as error:
            test.compare(str(error), "The path '../x' leads out of the folder '.'")
    finally:
        for name in ["renamed", os.path.join(folder, "link")]:
            if os.path.lexists(name):
                os.remove(name)
        if os.path.isdir(folder):
            os.rmdir(folder)
