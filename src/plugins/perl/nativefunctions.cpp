#include "plugins/perl/nativefunctions.h"

#include <algorithm>
#include <optional>

#include "interpreter/language/directcall.h"
#include "interpreter/language/objectcalls.h"
#include "interpreter/language/scripterrorset.h"
#include "interpreter/objects/globalfunctions.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/nativeclasses.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

/// What a function of Perl calls.
struct NativeFunctions::Target {
    /// Nothing for a function of applications.
    std::optional<NativeFunction> function;
    /// Of a property that can be written.
    std::optional<NativeFunction> setter;
    bool isProperty = false;
    bool isStaticMethod = false;
    /// The package of a class.
    QByteArray package;
    QString name;
};

namespace {

/// Where these functions come from, as far as Perl asks.
constexpr const char* ownFile = "<tamrix>";

/// Where arguments by name begin; `count` without them.
int startOfNamed(pTHX_ SV** arguments, int count,
                 const std::function<bool(const QString&)>& isParameter) {
    const auto isName = [&](SV* value) {
        if (!SvPOK(value) || SvCUR(value) < 2 || *SvPVX_const(value) != '-')
            return false;
        return isParameter(textOf(aTHX_ value).mid(1));
    };
    int start = count;
    while (start >= 2 && isName(arguments[start - 2]))
        start -= 2;
    return start;
}

/// Whether the arguments can go to the function as they stand: nothing by name, nothing left out.
bool arePlain(const Parameters& parameters, SV** arguments, int count) {
    for (int index = 0; index < count; ++index) {
        SV* const value = arguments[index];
        if (!SvOK(value) ? parameters.isOptional(index)
                         : SvPOK(value) && SvCUR(value) > 1 && *SvPVX_const(value) == '-')
            return false;
    }
    return true;
}

/// A call with plain arguments, which are most.
NativeEnd callPlainly(pTHX_ CaseInterpreter& active, const NativeFunction& function, SV** arguments,
                      int count) {
    NativeEnd result = returning(aTHX_ SvRef());
    const auto valueAt = [&](int place) { return PerlArgument::kept(aTHX_ arguments[place]); };
    const auto take = [&](SvRef given) { result = returning(aTHX_ std::move(given)); };
    return callDirectly<PerlContext>(active, function, count, valueAt, take)
               ? result
               : failing(aTHX_ * active.takeCallFailure());
}

/// Whether the value is the class or an object of it.
bool isOfClass(pTHX_ SV* value, const QByteArray& package) {
    return (sv_isobject(value) || SvPOK(value)) && sv_derived_from(value, package.constData());
}

}  // namespace

CallArguments givenArguments(pTHX_ SV** arguments, int count,
                             const std::function<bool(const QString&)>& isParameter) {
    const int named = startOfNamed(aTHX_ arguments, count, isParameter);
    CallArguments given;
    given.positional.reserve(static_cast<std::size_t>(named));
    for (int index = 0; index < named; ++index)
        given.positional.push_back(new PerlArgument(PerlArgument::kept(aTHX_ arguments[index])));
    for (int index = named; index < count; index += 2)
        given.named.emplace_back(textOf(aTHX_ arguments[index]).mid(1),
                                 new PerlArgument(PerlArgument::kept(aTHX_ arguments[index + 1])));
    return given;
}

NativeEnd resultOf(pTHX_ const ScriptResult& result) {
    if (!result)
        return failing(aTHX_ result.error());
    return returning(aTHX_ * result ? SvRef::borrow(valueOf(*result)) : SvRef());
}

NativeEnd NativeFunctions::call(pTHX_ CV* function, SV** arguments, int count) {
    const auto& target = *static_cast<const Target*>(CvXSUBANY(function).any_ptr);
    CaseInterpreter* const active = CaseInterpreter::onScriptThread();
    if (!active)
        return failing(aTHX_ refusedCall(target.name, CaseInterpreter::active() != nullptr));
    try {
        if (!target.function) {
            const auto isParameter = [&](const QString& name) {
                return globalFunctionHelp(target.name).section('\n', 0, 0).contains(name);
            };
            return resultOf(aTHX_ callGlobal(active, target.name,
                                             givenArguments(aTHX_ arguments, count, isParameter)));
        }
        const NativeFunction* native = &*target.function;
        SharedPtr<NativeScriptObject> object;
        const NativeFunction::Kind kind = native->kind();
        if ((kind == NativeFunction::Kind::Table || kind == NativeFunction::Kind::Native) &&
            !target.isStaticMethod && arePlain(native->parameters(), arguments, count))
            return callPlainly(aTHX_ * active, *native, arguments, count);
        if (kind == NativeFunction::Kind::Method) {
            object = count > 0 ? NativeHolder::unwrap(arguments[0]) : object;
            if (!object)
                return failing(aTHX_ badArgument(native->displayName() +
                                                 "() needs an object of its class in front"));
        } else if (kind == NativeFunction::Kind::Constructor ||
                   kind == NativeFunction::Kind::StaticAccessor) {
            if (count == 0)
                return failing(
                    aTHX_ badArgument(native->displayName() + "() needs its class in front"));
        }
        const bool hasFirst =
            object || kind == NativeFunction::Kind::Constructor ||
            kind == NativeFunction::Kind::StaticAccessor ||
            (target.isStaticMethod && count > 0 && isOfClass(aTHX_ arguments[0], target.package));
        if (hasFirst) {
            ++arguments;
            --count;
        }
        if (target.isProperty && count > 0) {
            if (!target.setter || count > 1)
                return failing(aTHX_ badArgument(
                    native->displayName() +
                    (target.setter ? " takes one value" : " is a property that can't be written")));
            native = &*target.setter;
        }
        const QStringList& names = native->parameters().names;
        return resultOf(aTHX_ callNative(
            active, *native, object,
            givenArguments(aTHX_ arguments, count,
                           [&names](const QString& name) { return names.contains(name); })));
    } catch (const ScriptErrorSet&) {
        return endOfCall(aTHX);
    } catch (const std::exception& exception) {
        return failing(aTHX_ thrownIn(target.name, QString::fromUtf8(exception.what())));
    }
}

NativeFunctions::NativeFunctions() = default;
NativeFunctions::~NativeFunctions() = default;

void NativeFunctions::add(std::unique_ptr<Target> target) {
    dTHX;
    CV* const function = defineBody(aTHX_ target->package + "::" + target->name.toUtf8(),
                                    nativeFunction<NativeFunctions::call>);
    CvXSUBANY(function).any_ptr = target.get();
    m_targets.push_back(std::move(target));
}

void NativeFunctions::define(const QByteArray& package, const QString& name,
                             const NativeFunction& function) {
    add(std::make_unique<Target>(Target{function, {}, false, false, package, name}));
    if (package == "main")
        addGlobalName(name);
}

void NativeFunctions::defineMember(const QByteArray& package, const NativeMember& member) {
    add(std::make_unique<Target>(Target{member.function, member.setter, member.isProperty(),
                                        member.kind == NativeMember::Kind::StaticMethod, package,
                                        member.name}));
}

void NativeFunctions::defineOfApplications(const QString& name) {
    dTHX;
    const QByteArray wholeName = "main::" + name.toUtf8();
    if (m_globalNames.contains(name) ||
        get_cvn_flags(wholeName.constData(), static_cast<STRLEN>(wholeName.size()), 0))
        return;
    add(std::make_unique<Target>(Target{{}, {}, false, false, "main", name}));
    addGlobalName(name);
}

void NativeFunctions::addGlobalName(const QString& name) {
    dTHX;
    if (m_globalNames.contains(name) || name.startsWith("_tamrix_"))
        return;
    m_globalNames.insert(name);
    av_push(get_av("tamrix::GLOBALS", GV_ADD), toPerl(aTHX_ name).release());
}

CV* defineBody(pTHX_ const QByteArray& name, XSUBADDR_t body) {
    return newXS_flags(name.constData(), body, ownFile, nullptr, SVf_UTF8);
}

}  // namespace Tamrix::PerlPlugin
