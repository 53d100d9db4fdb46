ParameterType("colour", "red|green", text => text.toUpperCase());

BeforeScenario("@special", () => {
    test.log("only for the tag");  // @special
});

AfterFeature(context => {
    test.log("done with " + context.feature);  // @done
});

Given("a {colour} light", (context, colour) => {  // @step10
    test.log(colour);  // @light
});

Given("something to do", () => {  // @step11
    pending("later");  // @pending
});
