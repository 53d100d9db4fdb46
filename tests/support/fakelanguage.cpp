#include "support/fakelanguage.h"

#include <QHash>

#include "interpreter/objects/objectidentity.h"

namespace Tamrix::Test {

namespace {

/// The base classes of native classes, by type identifier.
QHash<void*, void*>& superTypes() {
    static QHash<void*, void*> s_types;
    return s_types;
}

}  // namespace

QString FakeArgument::typeName() const {
    static const char* const s_names[] = {"null",  "bool",    "int",      "double", "string",
                                          "list",  "map",     "function", "object", "native",
                                          "table", "context", "class"};
    return s_names[m_value.index()];
}

double FakeArgument::toDouble() const {
    return has<long long>() ? double(get<long long>()) : get<double>();
}

long long FakeArgument::convertedToInt() const {
    return has<double>() ? static_cast<long long>(get<double>()) : get<long long>();
}

QString FakeArgument::toString() const {
    if (!alsoText.isNull())
        return alsoText;
    if (has<bool>())
        return get<bool>() ? "true" : "false";
    if (has<long long>())
        return QString::number(toInt());
    if (has<double>())
        return QString::number(toDouble());
    return isNull() ? "null" : get<QString>();
}

SharedPtr<NativeScriptObject> FakeArgument::toNative(void* typeId) const {
    const auto native = get<SharedPtr<NativeScriptObject>>();
    if (!native)
        return {};
    for (void* type = native->typeId(); type; type = superTypes().value(type)) {
        if (type == typeId)
            return native;
    }
    return {};
}

SharedPtr<ScriptArgument> FakeArgument::call(const List& arguments, QString* error) {
    return get<Function>()(arguments, error);
}

SharedPtr<ScriptArgument> text(const QString& value) {
    return new FakeArgument(value);
}

SharedPtr<ScriptArgument> number(double value) {
    return new FakeArgument(value);
}

SharedPtr<ScriptArgument> integer(long long value) {
    return new FakeArgument(value);
}

SharedPtr<ScriptArgument> boolean(bool value) {
    return new FakeArgument(value);
}

SharedPtr<ScriptArgument> list(const ScriptArgument::List& values) {
    return new FakeArgument(values);
}

SharedPtr<ScriptArgument> map(const ScriptArgument::Map& values) {
    return new FakeArgument(values);
}

SharedPtr<ScriptArgument> callable(FakeArgument::Function function) {
    return new FakeArgument(std::move(function));
}

SharedPtr<ScriptArgument> object(SharedPtr<Object> value) {
    return new FakeArgument(std::move(value));
}

// FakeContext

bool FakeContext::call(Function function, const ScriptArgument::List& arguments) {
    result.reset();
    setArguments(arguments);
    setCurrent(this);
    const bool value = execute(function);
    clearArguments();
    return value;
}

bool FakeContext::call(bool (*function)(ScriptContext*), const ScriptArgument::List& arguments) {
    result.reset();
    setArguments(arguments);
    setCurrent(this);
    const bool value = execute(function);
    clearArguments();
    return value;
}

ScriptContext* FakeContext::createSubContext() {
    auto* const context = new FakeContext(testResult());
    context->evaluator = evaluator;
    return context;
}

bool FakeContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    if (ancestorLevel < 0 || ancestorLevel >= int(frames.size()))
        return false;
    position = frames[ancestorLevel];
    return true;
}

bool FakeContext::isTrue(SharedPtr<ScriptArgument> value) {
    if (value->isObject())
        return isTrueObject(value->toObject());
    return value->isBool() ? value->toBool() : value->toInt() != 0 || !value->toString().isEmpty();
}

bool FakeContext::valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) {
    if (left->isObject() && right->isObject())
        return isSameObject(left->toObject(), right->toObject());
    return left->typeName() == right->typeName() && left->toString() == right->toString();
}

bool FakeContext::evaluate(const QString& text, const QString& fileName) {
    return evaluator && evaluator(*this, text, fileName);
}

// FakeInterpreter

int FakeInterpreter::s_alive = 0;
int FakeInterpreter::s_made = 0;
QStringList FakeInterpreter::s_calls;
std::function<void(FakeInterpreter&, const QString&)> FakeInterpreter::s_duringCall;

FakeInterpreter::FakeInterpreter(RunnerInterface* runner, Language language)
    : Interpreter(runner), m_language(language) {
    ++s_alive;
    ++s_made;
}

FakeInterpreter::~FakeInterpreter() {
    --s_alive;
}

bool FakeInterpreter::outcome(const QString& words) {
    setErrorLine(-1);
    const QStringList parts = words.split(' ');
    if (parts.size() < 2)
        return true;
    setErrorLine(parts.at(1).toInt());
    if (parts.first() != "error")
        return true;
    setErrorMessage(parts.mid(2).join(' '));
    setErrorCallStack({LineInfo("/scripts/caller.fake", 99)});
    return false;
}

bool FakeInterpreter::checkSyntax(const QString& text, const QString&) {
    for (const QString& line : text.split('\n')) {
        if (line.startsWith("syntax "))
            return outcome(line.mid(7));
    }
    return true;
}

bool FakeInterpreter::evaluate(const QString& text, const QString& fileName, int, int) {
    s_calls.append("evaluate");
    setErrorFile(fileName);
    QString ownOutcome;
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) {
        const QString name = line.section(' ', 0, 0);
        if (name == "evaluation")
            ownOutcome = line.section(' ', 1);
        else
            m_functions[name] = line.section(' ', 1);
    }
    return outcome(ownOutcome);
}

bool FakeInterpreter::callFunction(const QString& name, const ObjectList&) {
    s_calls.append("call " + name);
    if (s_duringCall)
        s_duringCall(*this, name);
    return outcome(m_functions[name]);
}

void FakeInterpreter::addNativeFunction(const QString& name, bool (*)(ScriptContext*),
                                        const QStringList& requiredParameters,
                                        const QStringList& optionalParameters, const QString&) {
    nativeFunctions +=
        name + "(" + requiredParameters.join(", ") + "; " + optionalParameters.join(", ") + ")\n";
}

void FakeInterpreter::addNativeType(const QString& name, void* typeId,
                                    const NativeScriptType& type) {
    nativeClasses.push_back({name, typeId, type});
    superTypes().insert(typeId, type.super());
}

QString FakeInterpreter::addToSearchPath(const QFileInfo& directory) {
    searchPath.append(directory.filePath());
    return directory.fileName() == "refused" ? QString("it is refused") : QString();
}

}  // namespace Tamrix::Test
