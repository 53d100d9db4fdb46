BeforeScenario(context => {
    test.log("before " + context.scenario);  // @begin
});

AfterScenario(context => {
    test.log(`after with ${context.count} pies`);  // @end
});

Given("an empty order", context => {  // @step1
    context.count = 0;
});

When("{int} pie(s) for {string} is/are ordered", (context, count, name) => {  // @step2
    context.count += count;
    test.log("for " + name);  // @order
});

Then("{int} pies arrive", (context, count) => {  // @step3
    test.compare(context.count, count, "pies");  // @arrive
});

Then("it costs {float}", (context, price) => {  // @step4
    test.compare(price, 4.5);  // @costs
});

When("these are ordered", context => {  // @step5
    for (const row of context.table)
        context.count += Number(row.count);
});

When("the note says", context => {  // @step6
    context.note = context.text;
});

Then("the note has {int} lines", (context, count) => {  // @step7
    test.compare(context.note.split("\n").length, count);  // @lines
});

Step("an error is raised", () => {  // @step8
    throw new RangeError("in a step");  // @error
});

Step("this is not reached", () => {  // @step9
    test.fail("reached");
});
