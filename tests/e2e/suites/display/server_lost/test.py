# The X server ends in the middle.
import os
import signal


def end_server():
    """Kills the display of this run, which is a child of the run."""
    for process in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open("/proc/%s/stat" % process) as status:
                name, rest = status.read().split("(")[1].rsplit(")", 1)
        except OSError:
            continue  # It has ended meanwhile.
        if name == "Xvfb" and rest.split()[1] == str(os.getpid()):
            os.kill(int(process), signal.SIGKILL)


def main():
    # This one does not end with the server.
    a = startApplication("survivor")
    w = waitForObject({"type": "Window", "title": "survivor"})
    end_server()
    try:
        waitFor(lambda: w.title == "", 5000)
    except Exception as error:
        test.log("title", str(error))
    try:
        click(w)
    except Exception as error:
        test.log("click", str(error))
    test.log("running", str(a.isRunning()))
