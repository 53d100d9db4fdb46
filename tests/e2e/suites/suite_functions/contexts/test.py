"""Every function for applications and their contexts, with two real programs."""


def fails(text, function, *arguments):
    try:
        function(*arguments)
    except RuntimeError as error:
        test.verify(text in str(error), "%r holds %r" % (str(error), text))
    else:
        test.fail("nothing was raised", text)


def main():
    test.verify(currentApplicationContext() is None)
    calculator = startApplication("calculator")
    test.compare(currentApplicationContext(), calculator)
    test.compare(defaultApplicationContext(), calculator)
    gallery = startApplication("gallery")
    test.compare(currentApplicationContext(), gallery)
    test.compare(applicationContextList(), [calculator, gallery])
    test.compare(applicationContext("calculator"), calculator)
    test.verify(applicationContext("none") is None)
    test.verify(object.exists("{type='QComboBox'}"))

    setApplicationContext(calculator)
    test.verify(not object.exists("{type='QComboBox'}"))
    test.verify(object.exists("{type='Button' text='7'}"))

    test.startSection("Facts")
    test.compare(calculator.name(), "calculator")
    test.verify("calculator" in calculator.commandLine())
    test.verify(calculator.pid() > 1 and calculator.pid() != gallery.pid())
    test.verify(calculator.cwd().startswith("/"))
    test.compare(calculator.isRunning(), True)
    test.compare(calculator.isFrozen(5), False)
    test.verify(calculator.usedMemory() > 1000000)
    test.verify(calculator.totalTime() >= 0)
    test.compare(calculator.environmentVariable("FLAVOUR"), "plain")
    calculator.readStdout()
    calculator.readStderr()
    test.verify(len(calculator.osName()) > 0)
    test.verify(calculator.toolkitVersion().startswith("Qt 5.15."))
    test.verify(len(calculator.host()) > 0)
    calculator.port()
    test.verify(calculator.startTime() is not None)
    test.endSection()

    test.startSection("Failures")
    fails("Empty application specified to startApplication", startApplication, "")
    fails("no-such-program", startApplication, "no-such-program")
    fails("no program named 'not-attachable' is attachable", attachToApplication, "not-attachable")
    fails("no application was launched within 100 ms", waitForApplicationLaunch, 100)
    fails("'__tamrix__fmiutil' is not installed", startFMI)
    fails("'canutil' is not installed", startCAN)
    fails("connectTo failed", connectTo, {"nothing": "here"})
    fails("Invalid type passed to setApplicationContext()", setApplicationContext, 1)
    test.endSection()

    setApplicationContext()
    test.compare(currentApplicationContext(), calculator)
    gallery.detach()
    fails("Cannot switch to invalid application context", setApplicationContext, gallery)
    fails("detach() failed", gallery.detach)
    test.compare(currentApplicationContext(), calculator)
    calculator.detach()
    test.compare(currentApplicationContext(), None, "none is left")
    fails("No application is connected", findObject, "{type='QComboBox'}")
