"""Steps that drive the calculator, in two spoken languages."""

from bdd import after_scenario, given, then, when


def press_keys(keys):
    for key in keys:
        click({"type": "Button", "text": key, "window": ":Calculator"})


@given("the calculator")
@given("der Taschenrechner ist offen")
def open_calculator(context):
    context.program = startApplication("calculator")


@when("I type {string}")
@when("ich {string} eingebe")
def type_keys(context, keys):
    press_keys(keys.split())


@when("I type these keys:")
def type_table(context):
    press_keys(row["key"] for row in context.table)


@then("the display shows {float}")
@then("zeigt die Anzeige {float}")
def check_display(context, number):
    test.compare(float(waitForObject(":Display").text), number)


@after_scenario("@calculator")
def close_calculator(context):
    context.program.expectExit()
    closeWindow(":Calculator")
