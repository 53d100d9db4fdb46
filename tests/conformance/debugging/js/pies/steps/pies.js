Given("{int} pies", (context, count) => {
    context.count = count;
});

When("they are eaten", context => {
    context.count -= 1;  // @eaten
});
