def main():
    test.log("never runs")
    if True  # here
        pass
