#include "plugins/tcl/nativeclasses.h"

#include <algorithm>

#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/nativecommands.h"
#include "plugins/tcl/optionwords.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclcontext.h"

namespace Tamrix::TclPlugin {

namespace {

template <typename Function>
std::shared_ptr<NativeFunction> shared(const ScriptContext& context,
                                       const NativeSignature& signature, Function function) {
    return std::make_shared<NativeFunction>(context, signature, function);
}

template <typename Map>
QStringList sortedKeys(const Map& map) {
    QStringList names = map.keys();
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

void NativeClasses::add(const QString& name, void* typeId, const NativeScriptType& type) {
    const ScriptContext& context = m_interpreter.context();
    const auto made = std::make_shared<NativeClass>();
    made->name = name;
    made->super = type.super();
    made->constructor = std::make_unique<NativeFunction>(
        context, NativeSignature{name, {}, {}, {}, {}}, type.constructor());
    const auto methods = type.methods();
    for (auto it = methods.cbegin(); it != methods.cend(); ++it)
        made->methods[it.key()] = shared(
            context,
            {it.key(), name, it->requiredParameters, it->optionalParameters, it->description},
            it->function);
    const auto staticMethods = type.staticMethods();
    for (auto it = staticMethods.cbegin(); it != staticMethods.cend(); ++it)
        made->staticMethods[it.key()] = shared(
            context,
            {it.key(), name, it->requiredParameters, it->optionalParameters, it->description},
            it->function);
    const auto accessor = [&](const QString& property, auto function) {
        return function ? std::make_unique<NativeFunction>(
                              context, NativeSignature{property, name, {}, {}, {}}, function)
                        : nullptr;
    };
    const auto properties = type.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        made->properties[it.key()] = std::make_shared<NativeProperty>(
            NativeProperty{accessor(it.key(), it->getter), accessor(it.key(), it->setter)});
    const auto staticProperties = type.staticProperties();
    for (auto it = staticProperties.cbegin(); it != staticProperties.cend(); ++it)
        made->staticProperties[it.key()] = std::make_shared<NativeProperty>(
            NativeProperty{accessor(it.key(), it->getter), accessor(it.key(), it->setter)});
    m_classes[typeId] = made;
    m_interpreter.defineCommand(name, runClassCommand,
                                std::make_unique<ClassCommand>(ClassCommand{*this, typeId}));
}

void NativeClasses::addMember(const QString& className, const NativeFunction& function) {
    m_members[className][function.signature().name] = std::make_shared<NativeFunction>(function);
}

const NativeClasses::NativeClass* NativeClasses::find(void* typeId) const {
    const auto found = m_classes.constFind(typeId);
    return found == m_classes.constEnd() ? nullptr : found->get();
}

TclRef NativeClasses::nameOf(const SharedPtr<NativeScriptObject>& object) {
    const NativeClass* const known = object ? find(object->typeId()) : nullptr;
    return m_interpreter.values().nameOf(object,
                                         known ? known->name : QStringLiteral("NativeObject"));
}

bool NativeClasses::isDerivedFrom(void* typeId, void* wanted) const {
    while (typeId && typeId != wanted) {
        const NativeClass* const known = find(typeId);
        typeId = known ? known->super : nullptr;
    }
    return typeId && typeId == wanted;
}

// Properties

template <typename Find>
int NativeClasses::readProperty(const QString& owner, const SharedPtr<NativeScriptObject>& object,
                                Find find, int count, Tcl_Obj* const* words) {
    if (count != 1)
        return wrongWords(m_interpreter, owner + " cget -option");
    const QString name = optionOf(words[0]);
    const NativeProperty* const property = find(name);
    if (!property)
        return m_interpreter.fail(noSuch("option", textOf(words[0]), owner, {}));
    return callWithWords(m_interpreter, *property->getter, object, {}, 0, nullptr);
}

template <typename Find>
int NativeClasses::writeProperties(const QString& owner,
                                   const SharedPtr<NativeScriptObject>& object, Find find,
                                   int count, Tcl_Obj* const* words) {
    if (count == 0 || count % 2 != 0)
        return wrongWords(m_interpreter, owner + " configure -option value ?-option value ...?");
    int code = TCL_OK;
    for (int index = 0; index < count && code == TCL_OK; index += 2) {
        const NativeProperty* const property = find(optionOf(words[index]));
        if (!property)
            return m_interpreter.fail(noSuch("option", textOf(words[index]), owner, {}));
        if (!property->setter)
            return m_interpreter.fail({ScriptFailure::Kind::NoMember,
                                       QStringLiteral("The property '%1' of '%2' can't be written")
                                           .arg(optionOf(words[index]), owner),
                                       false,
                                       {}});
        code = callWithWords(m_interpreter, *property->setter, object, {}, 1, words + index + 1);
    }
    return code;
}

// Commands

int NativeClasses::runClassCommand(void* data, Tcl_Interp*, int count, Tcl_Obj* const* words) {
    const auto& command = *static_cast<ClassCommand*>(data);
    const std::shared_ptr<NativeClass> known = command.classes.m_classes.value(command.typeId);
    return command.classes.callClass(*known, count - 1, words + 1);
}

int NativeClasses::callClass(const NativeClass& nativeClass, int count, Tcl_Obj* const* words) {
    if (count == 0)
        return wrongWords(m_interpreter, nativeClass.name + " subcommand ?arg ...?");
    const QString name = textOf(words[0]);
    const auto property = [&](const QString& wanted) {
        return nativeClass.staticProperties.value(wanted).get();
    };
    if (name == QLatin1String("new"))
        return callWithWords(m_interpreter, *nativeClass.constructor, {}, {}, count - 1, words + 1);
    if (name == QLatin1String("cget"))
        return readProperty(nativeClass.name, {}, property, count - 1, words + 1);
    if (name == QLatin1String("configure"))
        return writeProperties(nativeClass.name, {}, property, count - 1, words + 1);
    if (const auto method = nativeClass.staticMethods.value(name))
        return callWithWords(m_interpreter, *method, {}, {}, count - 1, words + 1);
    return m_interpreter.fail(
        noSuch("subcommand", name, nativeClass.name,
               QStringList({"new", "cget", "configure"}) + sortedKeys(nativeClass.staticMethods)));
}

int NativeClasses::callMethod(const SharedPtr<NativeScriptObject>& object, int count,
                              Tcl_Obj* const* words) {
    const NativeClass* const own = find(object->typeId());
    const QString owner = own ? own->name : QStringLiteral("NativeObject");
    const QString name = textOf(words[0]);
    // What a class has not, the one that it derives from may have.
    const auto inherited = [&](auto NativeClass::*table, const QString& wanted) {
        for (const NativeClass* each = own; each; each = find(each->super)) {
            if (const auto found = (each->*table).value(wanted))
                return found;
        }
        return typename std::decay_t<decltype(own->*table)>::mapped_type();
    };
    const auto property = [&](const QString& wanted) {
        return inherited(&NativeClass::properties, wanted).get();
    };
    if (name == QLatin1String("cget"))
        return readProperty(owner, object, property, count - 1, words + 1);
    if (name == QLatin1String("configure"))
        return writeProperties(owner, object, property, count - 1, words + 1);
    if (const auto method = inherited(&NativeClass::methods, name))
        return callWithWords(m_interpreter, *method, object, {}, count - 1, words + 1);
    if (const NativeProperty* const found = property(name); found && count == 1)
        return callWithWords(m_interpreter, *found->getter, object, {}, 0, nullptr);
    QStringList known{"cget", "configure"};
    for (const NativeClass* each = own; each; each = find(each->super))
        known += sortedKeys(each->methods) + sortedKeys(each->properties);
    return m_interpreter.fail(noSuch("subcommand", name, owner, known));
}

int NativeClasses::callMember(const SharedPtr<ApplicationContext>& context, int count,
                              Tcl_Obj* const* words) {
    const auto& members = m_members[QStringLiteral("ApplicationContext")];
    const QString name = textOf(words[0]);
    if (const auto member = members.value(name))
        return callWithWords(m_interpreter, *member, {},
                             {m_interpreter.context().createContext(context)}, count - 1,
                             words + 1);
    return m_interpreter.fail(
        noSuch("subcommand", name, QStringLiteral("ApplicationContext"), sortedKeys(members)));
}

}  // namespace Tamrix::TclPlugin
