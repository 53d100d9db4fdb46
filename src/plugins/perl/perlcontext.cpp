#include "plugins/perl/perlcontext.h"

#include "interpreter/language/stepactions.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conditionsource.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/equality.h"
#include "plugins/perl/nativeclasses.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/perldebugger.h"

namespace Tamrix::PerlPlugin {

namespace {

SharedPtr<ScriptArgument> argumentOf(SvRef value) {
    return new PerlArgument(std::move(value));
}

SharedPtr<ScriptArgument> argumentOf(SV* value) {
    return new PerlArgument(SvRef::steal(value));
}

/// The package of a namespace or class of the library.
QByteArray packageOf(const QString& className) {
    return className == "ApplicationContext" ? QByteArray("tamrix::ApplicationContext")
                                             : className.toUtf8();
}

}  // namespace

PerlContext::PerlContext(CaseInterpreter& interpreter)
    : LanguageContext(interpreter), m_interpreter(interpreter) {}

ScriptContext* PerlContext::createSubContext() {
    auto* const context = new PerlContext(m_interpreter);
    context->setTestResult(testResult());
    return context;
}

// Values

SharedPtr<ScriptArgument> PerlContext::createNull() {
    dTHX;
    return argumentOf(newSV(0));
}

SharedPtr<ScriptArgument> PerlContext::createBool(bool value) {
    dTHX;
    return argumentOf(newSVsv(value ? &PL_sv_yes : &PL_sv_no));
}

SharedPtr<ScriptArgument> PerlContext::createInt64(long long value) {
    dTHX;
    return argumentOf(newSViv(value));
}

SharedPtr<ScriptArgument> PerlContext::createDouble(double value) {
    dTHX;
    return argumentOf(newSVnv(value));
}

SharedPtr<ScriptArgument> PerlContext::createString(const QString& value) {
    dTHX;
    return argumentOf(toPerl(aTHX_ value));
}

SharedPtr<ScriptArgument> PerlContext::createDateTime(const QDateTime& value) {
    dTHX;
    return argumentOf(toPerlTime(aTHX_ value));
}

SharedPtr<ScriptArgument> PerlContext::createBytes(const QByteArray& value) {
    dTHX;
    return argumentOf(newSVpvn(value.constData(), static_cast<STRLEN>(value.size())));
}

SharedPtr<ScriptArgument> PerlContext::createList(
    const std::vector<SharedPtr<ScriptArgument>>& values) {
    dTHX;
    AV* const array = newAV();
    av_extend(array, static_cast<SSize_t>(values.size()));
    for (const SharedPtr<ScriptArgument>& value : values)
        av_push(array, newSVsv_nomg(valueOf(value)));
    return argumentOf(newRV_noinc(reinterpret_cast<SV*>(array)));
}

SharedPtr<ScriptArgument> PerlContext::createMap(
    const std::map<QString, SharedPtr<ScriptArgument>>& values) {
    dTHX;
    HV* const hash = newHV();
    for (const auto& [name, value] : values) {
        const SvRef key = toPerl(aTHX_ name);
        static_cast<void>(hv_store_ent(hash, key.get(), newSVsv_nomg(valueOf(value)), 0));
    }
    return argumentOf(newRV_noinc(reinterpret_cast<SV*>(hash)));
}

SharedPtr<ScriptArgument> PerlContext::createNative(SharedPtr<NativeScriptObject> object) {
    dTHX;
    return argumentOf(wrapNative(aTHX_ std::move(object)));
}

SharedPtr<ScriptArgument> PerlContext::createObject(SharedPtr<Object> object) {
    dTHX;
    return argumentOf(ObjectHolder::wrap(aTHX_ std::move(object), "tamrix::Object"));
}

SharedPtr<ScriptArgument> PerlContext::createTestDataSet(TestDataSet* dataSet) {
    dTHX;
    return argumentOf(
        DataSetHolder::wrap(aTHX_ SharedPtr<TestDataSet>(dataSet), "tamrix::DataSet"));
}

SharedPtr<ScriptArgument> PerlContext::createContext(SharedPtr<ApplicationContext> context) {
    dTHX;
    return argumentOf(
        ApplicationContextHolder::wrap(aTHX_ std::move(context), "tamrix::ApplicationContext"));
}

SharedPtr<ScriptArgument> PerlContext::createLocation(const ScriptLocation& location) {
    return createMap({{QStringLiteral("fileName"), createString(location.fileName)},
                      {QStringLiteral("line"), createInteger(location.line)}});
}

// Registration: each entry of the tables becomes a function of Perl too.

void PerlContext::addGlobalFunction(const QString& name, Function function) {
    ScriptContext::addGlobalFunction(name, function);
    m_interpreter.functions().define("main", name,
                                     NativeFunction(*this, signatureOfTable({}, name), function));
}

void PerlContext::addStaticMemberFunction(const QString& className, const QString& name,
                                          Function function) {
    ScriptContext::addStaticMemberFunction(className, name, function);
    m_interpreter.functions().define(
        packageOf(className), name,
        NativeFunction(*this, signatureOfTable(className, name), function));
}

void PerlContext::addMemberFunction(const QString& className, const QString& name,
                                    Function function) {
    ScriptContext::addMemberFunction(className, name, function);
    m_interpreter.functions().define(
        packageOf(className), name,
        NativeFunction(*this, signatureOfTable(className, name), function));
}

void PerlContext::addConstant(const QString& name, int value) {
    ScriptContext::addConstant(name, value);
    dTHX;
    const int separator = name.lastIndexOf(QStringLiteral("::"));
    const QByteArray package = separator < 0 ? QByteArray("main") : name.left(separator).toUtf8();
    const QByteArray constant = name.mid(separator < 0 ? 0 : separator + 2).toUtf8();
    newCONSTSUB(
        gv_stashpvn(package.constData(), static_cast<U32>(package.size()), GV_ADD | SVf_UTF8),
        constant.constData(), newSViv(value));
    if (separator < 0)
        m_interpreter.functions().addGlobalName(name);
}

// Positions

bool PerlContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    dTHX;
    SourceFiles& files = m_interpreter.files();
    const std::vector<CodeFrame> frames = scriptFrames(aTHX_ files);
    if (ancestorLevel < 0 || ancestorLevel >= static_cast<int>(frames.size()))
        return false;
    const COP* const statement = frames[static_cast<std::size_t>(ancestorLevel)].statement;
    position = LineInfo(files.path(CopFILE(statement)), static_cast<int>(CopLINE(statement)));
    return true;
}

QString PerlContext::explainArgument(const char* parameter) {
    dTHX;
    return explainCall(aTHX_ m_interpreter, QLatin1String(parameter));
}

// The language's own judgement

bool PerlContext::valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) {
    dTHX;
    return areEqual(aTHX_ valueOf(left), valueOf(right));
}

std::pair<QString, QString> PerlContext::evaluateForException(SharedPtr<ScriptArgument> code) {
    dTHX;
    const PerlDebugger::CatchesErrors catching(m_interpreter.perlDebugger());
    CodeEnd end;
    if (code->isString()) {
        bool isCompiled = false;
        end = m_interpreter.evaluateText(code->toString(), {}, &isCompiled);
        // A slip in the code is not the exception that the test is about.
        if (!isCompiled && end.ending == Ending::Died)
            return {QString(), "The code is not valid: " +
                                   m_interpreter.errors().take(aTHX_ end.value).message};
    } else if (code->isCallable()) {
        end = callCode(aTHX_ valueOf(code), {});
    } else {
        return {QString(), "Neither code as text nor a callable: " + code->toString()};
    }
    if (end.ending == Ending::Returned)
        return {QString(), QStringLiteral("No exception was raised")};
    if (end.ending == Ending::Left)
        throwEnd(std::move(end));
    return {"Raised " + m_interpreter.errors().take(aTHX_ end.value).message, QString()};
}

bool PerlContext::evaluateCondition(const QString& expression, QString* error) {
    dTHX;
    CodeEnd end = m_interpreter.evaluateText(expression, {}, nullptr);
    if (end.ending == Ending::Returned)
        return PerlArgument(std::move(end.value)).toBool();
    if (end.ending == Ending::Left)
        throwEnd(std::move(end));
    *error = m_interpreter.errors().take(aTHX_ end.value).message;
    return false;
}

bool PerlContext::evaluate(const QString& text, const QString& fileName) {
    dTHX;
    // What a file registers that is loaded again takes the place of what it did before.
    m_interpreter.steps().registry().forget(fileName);
    CodeEnd end = m_interpreter.evaluateText("package main; " + text, fileName, nullptr);
    if (end.ending == Ending::Returned)
        return true;
    if (end.ending == Ending::Left)
        throwEnd(std::move(end));
    const ScriptError error = m_interpreter.errors().take(aTHX_ end.value);
    QString message = error.message;
    if (!error.callStack.empty())
        message = QStringLiteral("%1:%2: %3")
                      .arg(error.callStack.front().fileName(),
                           QString::number(error.callStack.front().lineNumber()), message);
    setError(message);
    return false;
}

}  // namespace Tamrix::PerlPlugin
