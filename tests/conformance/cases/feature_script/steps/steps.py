from bdd import given, parameter_type, pending, before_scenario, after_feature


@parameter_type("colour", "red|green")
def colour(text):
    return text.upper()


@before_scenario("@special")
def special(context):
    test.log("only for the tag")  # @special


@after_feature
def done(context):
    test.log("done with " + context.feature)  # @done


@given("a {colour} light")  # @step10
def light(context, value):
    test.log(value)  # @light


@given("something to do")  # @step11
def todo(context):
    pending("later")  # @pending
