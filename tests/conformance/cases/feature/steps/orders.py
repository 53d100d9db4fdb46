from bdd import given, when, then, step, before_scenario, after_scenario


@before_scenario
def begin(context):
    test.log("before " + context.scenario)  # @begin


@after_scenario
def end(context):
    test.log("after with %d pies" % context.count)  # @end


@given("an empty order")  # @step1
def empty(context):
    context.count = 0


@when("{int} pie(s) for {string} is/are ordered")  # @step2
def order(context, count, name):
    context.count += count
    test.log("for " + name)  # @order


@then("{int} pies arrive")  # @step3
def arrive(context, count):
    test.compare(context.count, count, "pies")  # @arrive


@then("it costs {float}")  # @step4
def costs(context, price):
    test.compare(price, 4.5)  # @costs


@when("these are ordered")  # @step5
def table(context):
    for row in context.table:
        context.count += int(row["count"])


@when("the note says")  # @step6
def note(context):
    context.note = context.text


@then("the note has {int} lines")  # @step7
def lines(context, count):
    test.compare(len(context.note.split("\n")), count)  # @lines


@step("an error is raised")  # @step8
def error(context):
    raise ValueError("in a step")  # @error


@step("this is not reached")  # @step9
def reached(context):
    test.fail("reached")
