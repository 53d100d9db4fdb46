#pragma once

#include <QHash>
#include <optional>
#include <utility>
#include <vector>

#include "base/export.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// A member of a native class, as a plug-in makes one of its language's over it. A value.
struct NativeMember {
    enum class Kind { Method, StaticMethod, Property, StaticProperty };

    Kind kind;
    QString name;
    /// The method, or what reads the property.
    NativeFunction function;
    /// What writes the property; nothing for one that can only be read.
    std::optional<NativeFunction> setter;

    bool isProperty() const { return kind == Kind::Property || kind == Kind::StaticProperty; }
    /// It is the class's own, and no object's.
    bool isStatic() const { return kind == Kind::StaticMethod || kind == Kind::StaticProperty; }
};

/// Methods, static methods, properties, static properties, each by their names.
TAMRIX_EXPORT std::vector<NativeMember> nativeMembers(const ScriptContext& context,
                                                      const QString& className,
                                                      const NativeScriptType& type);
/// What makes objects of the class.
TAMRIX_EXPORT NativeFunction nativeConstructor(const ScriptContext& context,
                                               const QString& className,
                                               const NativeScriptType& type);

/// Tells from which type another one derives; null for none. For the process, since objects may
/// outlive a test case.
TAMRIX_EXPORT void setNativeSuper(void* typeId, void* super);
/// Null for a type that is not known, and for one that derives from none.
TAMRIX_EXPORT void* nativeSuper(void* typeId);
/// Whether the type is the wanted one or derives from it. False for null.
TAMRIX_EXPORT bool isNativeTypeDerivedFrom(void* typeId, void* wanted);

/// What a language has made of native classes, by their type identifiers.
template <typename Made>
class NativeClasses {
public:
    /// Those of the process, for a language whose objects may outlive a test case.
    static NativeClasses& self() {
        static auto* const s_self = new NativeClasses;
        return *s_self;
    }

    void add(void* typeId, void* super, Made made) {
        setNativeSuper(typeId, super);
        m_made.insert(typeId, std::move(made));
    }
    const QHash<void*, Made>& all() const { return m_made; }
    /// What was made of the type, or of the next one that it derives from; null without.
    const Made* find(void* typeId) const {
        for (; typeId; typeId = nativeSuper(typeId)) {
            const auto made = m_made.constFind(typeId);
            if (made != m_made.constEnd())
                return &*made;
        }
        return nullptr;
    }

private:
    QHash<void*, Made> m_made;
};

}  // namespace Tamrix
