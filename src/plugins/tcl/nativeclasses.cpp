#include "plugins/tcl/nativeclasses.h"

#include <algorithm>

#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/nativecommands.h"
#include "plugins/tcl/tclcontext.h"
#include "plugins/tcl/tclinterpreter.h"

namespace Tamrix::TclPlugin {

void ClassCommands::add(const QString& name, void* typeId, const NativeScriptType& type) {
    const ScriptContext& context = m_interpreter.context();
    const auto made = std::make_shared<NativeClass>(NativeClass{
        name, nativeConstructor(context, name, type), nativeMembers(context, name, type)});
    if (const auto* const super = m_classes.find(type.super()))
        std::copy_if((*super)->members.begin(), (*super)->members.end(),
                     std::back_inserter(made->members),
                     [](const NativeMember& member) { return !member.isStatic(); });
    m_classes.add(typeId, type.super(), made);
    m_interpreter.defineCommand(name, [this, made](int count, Tcl_Obj* const* words) {
        return count < 2 ? wrongWords(m_interpreter, made->name + " subcommand ?arg ...?")
                         : callNamed(*made, {}, count - 1, words + 1);
    });
}

void ClassCommands::addContextMember(const NativeFunction& function) {
    m_contextMembers[function.signature().name] = std::make_shared<NativeFunction>(function);
}

const NativeMember* ClassCommands::NativeClass::find(const QString& wanted, bool isStatic) const {
    const auto member = std::find_if(members.begin(), members.end(), [&](const NativeMember& each) {
        return each.name == wanted && each.isStatic() == isStatic;
    });
    return member == members.end() ? nullptr : &*member;
}

QString ClassCommands::classNameOf(void* typeId) const {
    const auto* const known = m_classes.find(typeId);
    return known ? (*known)->name : QStringLiteral("NativeObject");
}

// Commands

int ClassCommands::callMethod(const SharedPtr<NativeScriptObject>& object, int count,
                              Tcl_Obj* const* words) {
    static const NativeClass s_unknown{QStringLiteral("NativeObject"), {}, {}};
    const auto* const known = m_classes.find(object->typeId());
    return callNamed(known ? **known : s_unknown, object, count, words);
}

int ClassCommands::useProperty(const NativeClass& nativeClass,
                               const SharedPtr<NativeScriptObject>& object, const QString& name,
                               Tcl_Obj* const* value) {
    const NativeMember* const property = nativeClass.find(name, !object);
    if (!property || !property->isProperty())
        return m_interpreter.fail(noSuch("option", '-' + name, nativeClass.name, {}));
    if (value && !property->setter)
        return m_interpreter.fail(
            noMember(QStringLiteral("The property '%1' of '%2' can't be written")
                         .arg(name, nativeClass.name)));
    return callWithWords(m_interpreter, value ? *property->setter : property->function, object, {},
                         value ? 1 : 0, value);
}

int ClassCommands::callNamed(const NativeClass& nativeClass,
                             const SharedPtr<NativeScriptObject>& object, int count,
                             Tcl_Obj* const* words) {
    const QString name = textOf(words[0]);
    const int rest = count - 1;
    Tcl_Obj* const* const behind = words + 1;
    const auto read = [&](const QString& property) {
        return useProperty(nativeClass, object, property, nullptr);
    };
    const auto write = [&](const QString& property, Tcl_Obj* value) {
        return useProperty(nativeClass, object, property, &value);
    };
    if (const auto code =
            useOptions(m_interpreter, nativeClass.name, "option", count, words, read, write))
        return *code;
    if (!object && name == QLatin1String("new"))
        return callWithWords(m_interpreter, *nativeClass.constructor, {}, {}, rest, behind);
    const NativeMember* const member = nativeClass.find(name, !object);
    if (member && (!member->isProperty() || rest == 0))
        return callWithWords(m_interpreter, member->function, object, {}, rest, behind);
    QStringList known{"cget", "configure"};
    if (!object)
        known.prepend("new");
    for (const NativeMember& each : nativeClass.members) {
        if (each.isStatic() == !object)
            known.append(each.name);
    }
    return m_interpreter.fail(noSuch("subcommand", name, nativeClass.name, known));
}

int ClassCommands::callMember(const SharedPtr<ApplicationContext>& context, int count,
                              Tcl_Obj* const* words) {
    const QString name = textOf(words[0]);
    if (const auto member = m_contextMembers.value(name))
        return callWithWords(m_interpreter, *member, {},
                             {m_interpreter.context().createContext(context)}, count - 1,
                             words + 1);
    QStringList known = m_contextMembers.keys();
    known.sort();
    return m_interpreter.fail(
        noSuch("subcommand", name, QStringLiteral("ApplicationContext"), known));
}

}  // namespace Tamrix::TclPlugin
