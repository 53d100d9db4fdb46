"""Other threads of the script run while functions wait."""
import threading
import time

served = 0
ends = threading.Event()


def serve():
    global served
    while not ends.is_set():
        served += 1
        time.sleep(0.001)


def serves_during(what, function, *arguments):
    before = served
    try:
        function(*arguments)
    except RuntimeError:
        pass
    test.verify(served - before > 20, "%s: %d" % (what, served - before))


def main():
    server = threading.Thread(target=serve, daemon=True)
    server.start()
    serves_during("startApplication", startApplication, "calculator")
    button = waitForObject("{type='Button' text='7'}")
    serves_during("waitForObject", waitForObject, "{type='None'}", 400)
    serves_during("waitForObjectExists", waitForObjectExists, "{type='None'}", 400)
    serves_during("waitForObjectItem", waitForObjectItem, button, "none", 400)
    serves_during("waitForApplicationLaunch", waitForApplicationLaunch, 400)
    serves_during("waitFor", waitFor, "False", 400)
    serves_during("snooze", snooze, 0.4)
    serves_during("highlightObject", highlightObject, button, 400, True)

    def many_requests():
        for _ in range(2000):
            button.text
    serves_during("requests", many_requests)
    ends.set()
    server.join(10)
    test.verify(not server.is_alive())
