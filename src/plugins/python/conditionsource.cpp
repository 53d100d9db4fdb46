#include "plugins/python/conditionsource.h"

#include <QSet>
#include <QStringList>
#include <algorithm>
#include <iterator>

#include "plugins/python/conversion.h"
#include "plugins/python/nativefunction.h"

namespace Tamrix::PythonPlugin {

namespace {

constexpr int mostValues = 20;

/// Functions of Python that tell of their arguments and do nothing else.
constexpr const char* harmlessFunctions[] = {"abs", "all",  "any", "bool",  "float",  "int",
                                             "len", "list", "max", "min",   "repr",   "round",
                                             "set", "str",  "sum", "tuple", "sorted", "type"};

/// Nodes whose parts are shown in their place.
constexpr const char* composites[] = {"BoolOp", "BinOp", "UnaryOp", "Compare",
                                      "IfExp",  "Tuple", "List",    "Starred"};

/// Nodes that can be evaluated again, if their parts can.
constexpr const char* harmlessNodes[] = {"Name",  "Constant", "Attribute", "Subscript", "BoolOp",
                                         "BinOp", "UnaryOp",  "Compare",   "Tuple",     "List",
                                         "Slice", "Load",     "keyword",   "IfExp"};

template <std::size_t size>
bool isOneOf(const QString& name, const char* const (&names)[size]) {
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char* each) { return name == QLatin1String(each); });
}

PyRef attribute(PyObject* object, const char* name) {
    return checked(PyObject_GetAttrString(object, name));
}

QString kindOf(PyObject* node) {
    return QString::fromLatin1(Py_TYPE(node)->tp_name).section('.', -1);
}

QString textAttribute(PyObject* node, const char* name) {
    return fromPyString(attribute(node, name).get());
}

/// The nodes directly below a node.
PyRef childrenOf(PyObject* ast, PyObject* node) {
    const PyRef iterator = checked(PyObject_CallMethod(ast, "iter_child_nodes", "O", node));
    return checked(PySequence_List(iterator.get()));
}

/// The running call as an expression of its own, in brackets since it may take several lines; null
/// when the source is not to be had.
PyRef callSource(PyFrameObject* frame, SourceFiles& files) {
    const PyRef code = PyRef::steal(reinterpret_cast<PyObject*>(PyFrame_GetCode(frame)));
    auto* const codeObject = reinterpret_cast<PyCodeObject*>(code.get());
    if (files.path(codeObject->co_filename).isNull())
        return {};
    int line = 0;
    int column = 0;
    int endLine = 0;
    int endColumn = 0;
    if (!PyCode_Addr2Location(codeObject, PyFrame_GetLasti(frame), &line, &column, &endLine,
                              &endColumn) ||
        line < 1 || endLine < line || column < 0 || endColumn < 0)
        return {};
    const PyRef linecache = checked(PyImport_ImportModule("linecache"));
    checked(PyObject_CallMethod(linecache.get(), "checkcache", "O", codeObject->co_filename));
    const PyRef lines =
        checked(PyObject_CallMethod(linecache.get(), "getlines", "O", codeObject->co_filename));
    // Columns count bytes of UTF-8.
    QByteArray source;
    for (int number = line; number <= endLine; ++number) {
        if (!PyList_Check(lines.get()) || number > PyList_GET_SIZE(lines.get()))
            return {};
        QByteArray text = fromPyString(PyList_GET_ITEM(lines.get(), number - 1)).toUtf8();
        if (number == endLine)
            text.truncate(endColumn);
        if (number == line)
            text.remove(0, column);
        source += text;
    }
    return checked(
        PyUnicode_DecodeUTF8(('(' + source + ')').constData(), source.size() + 2, "replace"));
}

/// The node of the first argument, or of the one of this name; null when there is none.
PyRef argumentNode(PyObject* call, const char* parameter) {
    const PyRef positional = attribute(call, "args");
    if (PyList_GET_SIZE(positional.get()) > 0) {
        PyObject* const first = PyList_GET_ITEM(positional.get(), 0);
        return kindOf(first) == "Starred" ? PyRef() : PyRef::borrow(first);
    }
    const PyRef named = attribute(call, "keywords");
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(named.get()); ++index) {
        PyObject* const keyword = PyList_GET_ITEM(named.get(), index);
        if (textAttribute(keyword, "arg") == QLatin1String(parameter))
            return attribute(keyword, "value");
    }
    return {};
}

/// Finds the values in an expression.
class Values {
public:
    Values(PyObject* ast, PyObject* source, PyFrameObject* frame)
        : m_ast(ast),
          m_source(source),
          m_globals(checked(PyFrame_GetGlobals(frame))),
          m_locals(checked(PyFrame_GetLocals(frame))) {}

    /// Whether the node means a function of the test system.
    bool isNativeFunctionHere(PyObject* node) const {
        const PyRef function = isHarmless(node) ? evaluate(node) : PyRef();
        return function && isNativeFunction(function.get());
    }

    QString textOfNode(PyObject* node) const {
        const PyRef text =
            checked(PyObject_CallMethod(m_ast, "get_source_segment", "OO", m_source, node));
        const QString words = fromPyString(text.get());
        // One line, however it was broken.
        return words.contains('\n') ? words.simplified() : words;
    }

    /// Adds the values in the node, from left to right.
    void visit(PyObject* node) {
        const QString kind = kindOf(node);
        const bool isKeyword = kind == "keyword";
        if (kind == "Constant" || m_lines.size() >= mostValues ||
            (!isKeyword && !isInstance(node, "expr")))
            return;
        if (!isKeyword && !isOneOf(kind, composites) && isHarmless(node)) {
            add(node);
            return;
        }
        // What can't be evaluated again: its parts, but no lambda's or comprehension's, whose names
        // mean nothing here.
        if (!isOneOf(kind, composites) && kind != "Call" && kind != "Attribute" &&
            kind != "Subscript" && !isKeyword)
            return;
        const PyRef children = childrenOf(m_ast, node);
        for (Py_ssize_t index = 0; index < PyList_GET_SIZE(children.get()); ++index) {
            PyObject* const child = PyList_GET_ITEM(children.get(), index);
            // Of a method that is called, the object tells more.
            if (kind == "Call" && index == 0 && kindOf(child) == "Attribute")
                visit(attribute(child, "value").get());
            else
                visit(child);
        }
    }

    QStringList lines() const { return m_lines; }

private:
    bool isHarmless(PyObject* node) const {
        const QString kind = kindOf(node);
        if (kind == "Call") {
            if (!isHarmlessFunction(attribute(node, "func").get()))
                return false;
        } else if (!isOneOf(kind, harmlessNodes) && !isOperator(node)) {
            return false;
        }
        const PyRef children = childrenOf(m_ast, node);
        for (Py_ssize_t index = 0; index < PyList_GET_SIZE(children.get()); ++index) {
            if (!isHarmless(PyList_GET_ITEM(children.get(), index)))
                return false;
        }
        return true;
    }

    bool isInstance(PyObject* node, const char* base) const {
        const int is = PyObject_IsInstance(node, attribute(m_ast, base).get());
        checked(is);
        return is == 1;
    }

    /// One of the operators' own nodes, which have no parts and no value.
    bool isOperator(PyObject* node) const {
        return isInstance(node, "operator") || isInstance(node, "unaryop") ||
               isInstance(node, "boolop") || isInstance(node, "cmpop");
    }

    /// Whether the name means Python's own function.
    bool isHarmlessFunction(PyObject* function) const {
        if (kindOf(function) != "Name" ||
            !isOneOf(textAttribute(function, "id"), harmlessFunctions))
            return false;
        const PyRef meant = evaluate(function);
        const PyRef own = PyRef::borrow(PyDict_GetItemString(
            PyEval_GetBuiltins(), textAttribute(function, "id").toUtf8().constData()));
        return meant && meant.get() == own.get();
    }

    /// Null when it can't be evaluated.
    PyRef evaluate(PyObject* node) const {
        const PyRef expression = checked(PyObject_CallMethod(m_ast, "Expression", "O", node));
        const PyRef builtins = checked(PyImport_ImportModule("builtins"));
        const PyRef code = checked(PyObject_CallMethod(builtins.get(), "compile", "Oss",
                                                       expression.get(), "<condition>", "eval"));
        PyRef value = PyRef::steal(PyEval_EvalCode(code.get(), m_globals.get(), m_locals.get()));
        if (!value)
            clearOrdinaryError();
        return value;
    }

    void add(PyObject* node) {
        const QString text = textOfNode(node);
        if (m_seen.contains(text))
            return;
        m_seen.insert(text);
        const PyRef value = evaluate(node);
        // Functions, classes and modules say nothing that their names do not.
        if (value && !PyCallable_Check(value.get()) && !PyModule_Check(value.get()))
            m_lines.append(text + ": " + representation(value.get()));
    }

    PyObject* m_ast;
    PyObject* m_source;
    PyRef m_globals;
    PyRef m_locals;
    QSet<QString> m_seen;
    QStringList m_lines;
};

QString explain(PyFrameObject* frame, const char* parameter, SourceFiles& files) {
    const PyRef source = callSource(frame, files);
    if (!source)
        return {};
    const PyRef ast = checked(PyImport_ImportModule("ast"));
    const PyRef parsed = checked(
        PyObject_CallMethod(ast.get(), "parse", "Oss", source.get(), "<condition>", "eval"));
    const PyRef call = attribute(parsed.get(), "body");
    Values values(ast.get(), source.get(), frame);
    // Functions of Python call others on their own account.
    if (kindOf(call.get()) != "Call" ||
        !values.isNativeFunctionHere(attribute(call.get(), "func").get()))
        return {};
    const PyRef condition = argumentNode(call.get(), parameter);
    if (!condition || kindOf(condition.get()) == "Constant")
        return {};
    values.visit(condition.get());
    return (QStringList(values.textOfNode(condition.get())) + values.lines()).join('\n');
}

}  // namespace

QString explainCall(const char* parameter, SourceFiles& files) {
    PyFrameObject* const frame = PyEval_GetFrame();
    if (!frame)
        return {};
    try {
        return explain(frame, parameter, files);
    } catch (const PythonErrorSet&) {
        // A source that does not parse is another one by now.
        clearOrdinaryError();
        return {};
    }
}

}  // namespace Tamrix::PythonPlugin
