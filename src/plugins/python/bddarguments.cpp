#include "plugins/python/bddarguments.h"

#include <iterator>

#include "plugins/python/bddcontext.h"
#include "plugins/python/conversion.h"
#include "plugins/python/scripterror.h"

namespace Tamrix::PythonPlugin {

namespace {

PyRef pyText(const std::string& text) {
    return checked(PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size())));
}

PyRef pyText(const std::optional<std::string>& text) {
    return text ? pyText(*text) : PyRef::borrow(Py_None);
}

PyRef integer(const std::string& text) {
    return PyRef::steal(PyLong_FromString(text.c_str(), nullptr, 10));
}

PyRef number(const std::string& text) {
    return PyRef::steal(PyFloat_FromString(pyText(text).get()));
}

PyRef decimal(const std::string& text) {
    const PyRef module = checked(PyImport_ImportModule("decimal"));
    return PyRef::steal(PyObject_CallMethod(module.get(), "Decimal", "s", text.c_str()));
}

/// What the types of the language become; those that are not here stay texts.
constexpr struct {
    const char* name;
    PyRef (*convert)(const std::string& text);
} conversions[] = {
    {"int", integer},  {"float", number},       {"byte", integer},  {"short", integer},
    {"long", integer}, {"biginteger", integer}, {"double", number}, {"bigdecimal", decimal},
};

/// The value of an argument; null with the error indicator set when its type refuses it.
PyRef valueOf(const BddRegistry& registry, const Gherkin::Argument& argument) {
    if (!argument.text || !argument.typeName)
        return pyText(argument.text);
    const PyRef transformer = registry.transformer(*argument.typeName);
    if (transformer.get() != Py_None) {
        if (argument.groups.empty())
            return PyRef::steal(
                PyObject_CallOneArg(transformer.get(), pyText(*argument.text).get()));
        const PyRef texts = checked(PyTuple_New(static_cast<Py_ssize_t>(argument.groups.size())));
        for (std::size_t i = 0; i < argument.groups.size(); ++i)
            PyTuple_SET_ITEM(texts.get(), static_cast<Py_ssize_t>(i),
                             pyText(argument.groups[i]).release());
        return PyRef::steal(PyObject_Call(transformer.get(), texts.get(), nullptr));
    }
    for (const auto& row : conversions) {
        if (*argument.typeName == row.name)
            return row.convert(*argument.text);
    }
    return pyText(*argument.text);
}

}  // namespace

std::optional<StepArguments> stepArguments(const BddRegistry& registry,
                                           const BddRegistry::Match& match, std::string* problem) {
    const PyRef values = checked(PyList_New(0));
    StepArguments result;
    result.named = checked(PyDict_New());
    checked(PyList_Append(values.get(), bddContext()));
    for (const Gherkin::Argument& argument : match.match.arguments) {
        const PyRef value = valueOf(registry, argument);
        if (!value) {
            if (!isOrdinaryError())
                throw PythonErrorSet();
            *problem = "The parameter type '" + argument.typeName.value_or("") + "' refuses '" +
                       argument.text.value_or("") + "': " + takeScriptError().message.toStdString();
            return std::nullopt;
        }
        if (argument.groupName.empty())
            checked(PyList_Append(values.get(), value.get()));
        else
            checked(
                PyDict_SetItemString(result.named.get(), argument.groupName.c_str(), value.get()));
    }
    result.positional = checked(PyList_AsTuple(values.get()));
    return result;
}

}  // namespace Tamrix::PythonPlugin
