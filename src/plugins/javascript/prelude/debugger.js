// The half of the debugger that is written in the debugger's own realm.
"use strict";
const dbg = new Debugger();
const breakLines = new Map();
let silent = false;
let stepping = false;

// Values

const bare = value => value && value.unsafeDereference ? value.unsafeDereference() : value;

function completed(completion) {
    if (completion === null)
        return ["ended"];
    if ("throw" in completion)
        return ["thrown", bare(completion.throw), completion.stack];
    return ["returned", bare(completion.return)];
}

// Lists are flat: what belongs together stands behind one another.

// Frames. Code of the library has a name in <>.

const isScript = frame =>
    frame.script && frame.script.url && !frame.script.url.startsWith("<");

function scriptFrame(frame) {
    while (frame && (frame.type === "wasmcall" || !isScript(frame)))
        frame = frame.older;
    return frame;
}

function frames() {
    const found = [];
    for (let frame = scriptFrame(dbg.getNewestFrame()); frame; frame = scriptFrame(frame.older)) {
        const place = frame.script.getOffsetLocation(frame.offset);
        found.push(frame, frame.script.url, place.lineNumber, place.columnNumber + 1);
    }
    return found;
}

function variables(frame) {
    const known = new Set();
    const found = [];
    const add = (name, value) => {
        const hasNone = value && typeof value === "object" &&
            (value.uninitialized || value.missingArguments);
        if (hasNone || known.has(name))
            return;
        known.add(name);
        found.push(name, value && value.optimizedOut ? "<optimized out>" : bare(value));
    };
    for (let scope = frame.environment; scope; scope = scope.parent) {
        if (scope.type === "declarative") {
            for (const name of scope.names())
                add(name, scope.getVariable(name));
        } else if (scope.type === "object") {
            for (const name of scope.object.getOwnPropertyNames()) {
                const property = scope.object.getOwnPropertyDescriptor(name);
                if (property && property.enumerable && "value" in property)
                    add(name, property.value);
            }
        }
    }
    return found;
}

// Code that is handed over

function evaluate(frame, global, code, url) {
    return completed(frame ? frame.eval(code, {url})
                           : dbg.makeGlobalObjectReference(global).executeInGlobal(code, {url}));
}

function withDebuggee(global, work) {
    const wasKnown = dbg.hasDebuggee(global);
    if (!wasKnown)
        dbg.addDebuggee(global);
    try {
        return work();
    } finally {
        if (!wasKnown)
            dbg.removeDebuggee(global);
    }
}

function evaluateInCaller(global, code, url) {
    return withDebuggee(global, () =>
        evaluate(scriptFrame(dbg.getNewestFrame()), global, code, url));
}

// Lines

function reach(frame, line) {
    frame.lastLine = line;
    tellLine(frame.script.url, line);
}

function onStep() {
    if (silent || !isScript(this))
        return;
    // Back at the head of a loop, which may have come to its end.
    const isBack = this.offset < this.lastOffset;
    this.lastOffset = this.offset;
    const place = this.script.getOffsetMetadata(this.offset);
    if ((place.isStepStart || isBack) && place.lineNumber !== this.lastLine) {
        tellOf(this, place.lineNumber);
        reach(this, place.lineNumber);
    }
}

// A break point in the line where a step has just stopped may come behind that place, and is the same
// stop, even if it was set there.
function tellOf(frame, line) {
    const offsets = frame.script.getLineOffsets(line).filter(offset => offset >= frame.offset);
    frame.toldFrom = frame.offset;
    frame.toldTo = offsets.length > 0 ? Math.min(...offsets) : undefined;
}

function forgetTold() {
    if (this.offset >= this.toldFrom && this.offset <= this.toldTo)
        return;
    this.toldTo = undefined;
    this.onStep = undefined;
}

function onEnterFrame(frame) {
    if (!isScript(frame))
        return;
    // A generator or an asynchronous function goes on.
    frame.lastLine = undefined;
    frame.lastOffset = undefined;
    frame.onStep = onStep;
}

function setStepping(isStepping) {
    if (stepping === isStepping)
        return;
    stepping = isStepping;
    dbg.onEnterFrame = isStepping ? onEnterFrame : undefined;
    for (let frame = dbg.getNewestFrame(); frame; frame = frame.older) {
        if (!isScript(frame))
            continue;
        if (frame.toldFrom !== frame.offset)
            frame.toldTo = undefined;
        frame.onStep = isStepping ? onStep : frame.toldTo === undefined ? undefined : forgetTold;
        frame.lastLine = frame.script.getOffsetLocation(frame.offset).lineNumber;
        frame.lastOffset = frame.offset;
    }
}

const breakPoint = {
    hit(frame) {
        const line = frame.script.getOffsetLocation(frame.offset).lineNumber;
        const isTold = stepping ? frame.lastLine === line : frame.toldTo === frame.offset;
        if (!silent && !isTold)
            reach(frame, line);
    }
};

function setBreakPoints(script) {
    for (const line of breakLines.get(script.url) || []) {
        for (const offset of script.getLineOffsets(line))
            script.setBreakpoint(offset, breakPoint);
    }
}

function setBreakLines(url, lines) {
    breakLines.set(url, lines);
    for (const script of dbg.findScripts({url})) {
        script.clearBreakpoint(breakPoint);
        setBreakPoints(script);
    }
}

function onNewScript(script) {
    if (!breakLines.has(script.url))
        return;
    setBreakPoints(script);
    for (const child of script.getChildScripts())
        onNewScript(child);
}

// What the text of a script says

const syntaxes = new WeakMap();

function childrenOf(node) {
    const children = [];
    for (const key of Object.keys(node)) {
        // The name behind a point is none of a variable.
        if (key === "loc" || (key === "property" && !node.computed))
            continue;
        for (const each of [node[key]].flat())
            if (each && typeof each.type === "string")
                children.push(each);
    }
    return children;
}

function readSyntax(source) {
    const syntax = {functions: [], guarded: [], calls: []};
    const visit = node => {
        if (/Function/.test(node.type))
            syntax.functions.push(node.loc);
        else if (node.type === "TryStatement" && node.handler)
            syntax.guarded.push(node.block.loc);
        else if (node.type === "CallExpression")
            syntax.calls.push(node);
        childrenOf(node).forEach(visit);
    };
    for (const target of ["script", "module"]) {
        try {
            visit(Reflect.parse(source.text, {line: source.startLine, target}));
            return syntax;
        } catch (error) {
            // Of the other kind, or too deep.
        }
    }
    return null;
}

// Null for what can't be read.
function syntaxOf(script) {
    if (!syntaxes.has(script.source))
        syntaxes.set(script.source, readSyntax(script.source));
    return syntaxes.get(script.source);
}

function contains(range, line, column) {
    const isBehindStart = line > range.start.line ||
        (line === range.start.line && column >= range.start.column);
    return isBehindStart && (line < range.end.line ||
        (line === range.end.line && column < range.end.column));
}

// Outer ranges stand in front of inner ones.
const innermost = (ranges, line, column) =>
    ranges.filter(range => contains(range, line, column)).pop();

function placeOf(frame) {
    const place = frame.script.getOffsetLocation(frame.offset);
    return [place.lineNumber, place.columnNumber];
}

// Errors

// Whether a `try` of the frame's function catches what is thrown where the frame is. The engine
// itself has more of them, as around the body of an asynchronous function.
function isInTry(frame) {
    const syntax = syntaxOf(frame.script);
    if (!syntax)
        return frame.script.isInCatchScope(frame.offset);
    const place = placeOf(frame);
    const here = innermost(syntax.functions, ...place);
    return syntax.guarded.some(block => contains(block, ...place) &&
        innermost(syntax.functions, block.start.line, block.start.column) === here);
}

// Whether what a promise is rejected with is caught by one that waits for it: an asynchronous
// function, a promise that follows it, or a function of the script.
function isCaughtBy(waiting) {
    if (waiting instanceof Debugger.Frame)
        return isCaught(waiting);
    if (waiting instanceof Debugger.Object)
        return waiting.getPromiseReactions().some(isCaughtBy);
    return Boolean(waiting.reject) || !waiting.result || isCaughtBy(waiting.result);
}

function isCaught(frame) {
    for (; frame; frame = frame.onStack ? frame.older : null) {
        if (frame.script && isScript(frame) && isInTry(frame))
            return true;
        const waiting = frame.asyncPromise ? frame.asyncPromise.getPromiseReactions() : [];
        if (waiting.length > 0)
            return waiting.some(isCaughtBy);
    }
    return false;
}

function onExceptionUnwind(frame, value) {
    if (!silent && isScript(frame) && !isCaught(frame))
        tellError(bare(value));
}

// What the running call of a verdict says

const mostValues = 20;
// Functions that tell of their arguments and do nothing else.
const pureFunctions =
    /^(Array\.isArray|BigInt|Boolean|Math\.\w+|Number(\.is\w+)?|Object\.keys|String|isFinite|isNaN|parseFloat|parseInt)$/;
// Nodes whose parts are shown in their place.
const composites = new Set(["ArrayExpression", "BinaryExpression", "ConditionalExpression",
    "LogicalExpression", "SpreadExpression", "TemplateLiteral", "UnaryExpression"]);
// Nodes that can be evaluated again, if their parts can.
const harmless = new Set([...composites, "Identifier", "Literal", "MemberExpression",
    "OptionalExpression", "OptionalMemberExpression", "ThisExpression"]);
const isConstant = node => node.type === "Literal" ||
    (node.type === "Identifier" && /^(undefined|NaN|Infinity)$/.test(node.name));

// The first argument of a call, and the values in it.
class Condition {
    values = [];
    seen = new Set();

    constructor(frame) {
        this.frame = frame;
        this.text = frame.script.source.text;
        this.firstLine = frame.script.source.startLine;
    }
    indexOf({line, column}) {
        let index = 0;
        for (let number = this.firstLine; number < line; ++number)
            index = this.text.indexOf("\n", index) + 1;
        return index + column;
    }
    textOf(node) {
        let start = this.indexOf(node.loc.start);
        let end = this.indexOf(node.loc.end);
        // The parser leaves brackets at the ends out.
        let open = 0;
        let closed = 0;
        for (const [mark] of this.text.slice(start, end).matchAll(/(['"`])(\\.|(?!\1).)*\1|[()]/gs)) {
            if (mark === "(")
                ++open;
            else if (mark === ")" && open > 0)
                --open;
            else if (mark === ")")
                ++closed;
        }
        while (closed-- > 0)
            start = this.text.lastIndexOf("(", start - 1);
        while (open-- > 0)
            end = this.text.indexOf(")", end) + 1;
        return this.text.slice(start, end);
    }
    lineOf(node) {
        return this.textOf(node).replace(/\s*\n\s*/g, " ");
    }
    // Null when it can't be evaluated.
    evaluate(node) {
        const completion = this.frame.eval(`(${this.textOf(node)}\n)`, {url: "<condition>"});
        return completion && "return" in completion ? {value: completion.return} : null;
    }
    isPure(callee) {
        if (!pureFunctions.test(this.textOf(callee)))
            return false;
        const meant = this.evaluate(callee);
        return Boolean(meant && meant.value && meant.value.callable && !meant.value.script);
    }
    isHarmless(node) {
        const isKnown = node.type === "CallExpression" ? this.isPure(node.callee)
            : harmless.has(node.type) && node.operator !== "delete";
        return isKnown && childrenOf(node).every(each => this.isHarmless(each));
    }
    add(node) {
        const text = this.lineOf(node);
        if (this.seen.has(text))
            return;
        this.seen.add(text);
        const found = this.evaluate(node);
        // Functions and classes say nothing that their names do not.
        if (found && !(found.value && found.value.callable))
            this.values.push(text, bare(found.value));
    }
    visit(node) {
        if (isConstant(node) || this.values.length >= 2 * mostValues)
            return;
        if (!composites.has(node.type) && this.isHarmless(node)) {
            this.add(node);
            return;
        }
        // What can't be evaluated again: its parts, but none of a function's, whose names mean
        // nothing here.
        if (!composites.has(node.type) && !/^(Optional)?(Call|Member)?Expression$/.test(node.type))
            return;
        // Of a method that is called, the object tells more.
        for (const each of childrenOf(node))
            this.visit(each === node.callee && each.object ? each.object : each);
    }
}

function explainCaller(global) {
    return withDebuggee(global, () => {
        const frame = dbg.getNewestFrame();
        const syntax = frame && isScript(frame) ? syntaxOf(frame.script) : null;
        if (!syntax)
            return [];
        const condition = new Condition(frame);
        const [line, column] = placeOf(frame);
        // A call stands at the name of its method or behind that of its function.
        const isHere = ({loc}) => contains(loc, line, column) ||
            (loc.end.line === line && loc.end.column === column);
        const isRunning = ({callee}) => {
            if (!isHere(callee) || !condition.isHarmless(callee))
                return false;
            const meant = condition.evaluate(callee);
            return meant && meant.value && isLibraryFunction(bare(meant.value));
        };
        const wasSilent = silent;
        silent = true;
        try {
            const call = syntax.calls.find(isRunning);
            const node = call && call.arguments[0];
            if (!node || isConstant(node) || node.type === "SpreadExpression")
                return [];
            condition.visit(node);
            return [condition.lineOf(node), undefined, ...condition.values];
        } finally {
            silent = wasSilent;
        }
    });
}

function watch(global) {
    dbg.addDebuggee(global);
    dbg.onNewScript = onNewScript;
    dbg.onExceptionUnwind = onExceptionUnwind;
}

function unwatch() {
    setStepping(false);
    dbg.clearAllBreakpoints();
    breakLines.clear();
    dbg.onNewScript = undefined;
    dbg.onExceptionUnwind = undefined;
    dbg.removeAllDebuggees();
    silent = false;
}

function setSilent(isSilent) { silent = isSilent; }
