def init():
    test.log("init runs")


def cleanup():
    test.log("clean-up runs without main")
