from bdd import given, when


@given("{int} pies")
def pies(context, count):
    context.count = count


@when("they are eaten")
def they_are_eaten(context):
    context.count -= 1  # @eaten
