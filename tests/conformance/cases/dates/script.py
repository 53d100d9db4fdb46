import datetime


def main():
    context = startApplication("widgets")
    age = datetime.datetime.now() - context.startTime()
    test.verify(abs(age.total_seconds()) < 60)  # @age
