# Files and programs of another machine. Without a host it is the default system: the one that the
# settings name, else this machine, so that the case runs everywhere.

import os
import tempfile


def main():
    with RemoteSystem() as lab, tempfile.TemporaryDirectory() as here:
        test.log("The system runs", lab.getOSName())
        folder = lab.execute(["mktemp", "-d"])["stdout"].strip()

        # A file goes there and comes back.
        report = os.path.join(here, "report.txt")
        with open(report, "w", encoding="UTF-8") as file:
            file.write("42 °C\n")
        lab.createPath(folder + "/in/box", recursive=True)
        lab.upload(report, folder + "/in/box/report.txt")
        test.compare(lab.listFiles(folder + "/in/box"), ["report.txt"])
        test.compare(lab.getPathProperty(folder + "/in/box/report.txt", "size"), 7)
        lab.download(folder + "/in/box/report.txt", os.path.join(here, "back.txt"))
        with open(os.path.join(here, "back.txt"), encoding="UTF-8") as file:
            test.compare(file.read(), "42 °C\n")

        # A program there, with folder, environment and a time-out.
        lab.createFile(folder + "/count.sh", 'ls "$1" | wc -l; exit 3\n')
        result = lab.execute(["sh", "count.sh", "in/box"], folder, {"LC_ALL": "C"}, {"timeout": 10})
        test.compare(result["stdout"].strip(), "1")
        test.compare(result["exitcode"], 3)

        # What can't be done is an exception.
        try:
            lab.deletePath(folder)
        except Exception as error:
            test.log("As it should be", str(error))
        lab.deletePath(folder, recursive=True)
        test.verify(not lab.exists(folder), "nothing is left")
