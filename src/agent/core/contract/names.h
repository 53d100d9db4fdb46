#pragma once

#include <QStringList>

#include "agent/core/element.h"
#include "base/export.h"

namespace Tamrix::Agent {

/// What is known of a type of elements by its name alone. The finder leaves out what can't match.
struct TypeTraits {
    /// Whether elements of the type are items.
    bool areItems = false;
    /// Whether elements of the type may be seen though they hang below a window that is hidden.
    bool showBelowHidden = false;
};

/// Of a toolkit: what tells an element from others, for people and in names.
class TAMRIX_EXPORT ToolkitNames {
public:
    virtual QString typeName(const Element& element) const;
    /// Names of the base types, the nearest first.
    virtual QStringList superTypes(const Element& element) const;
    virtual TypeTraits traitsOf(const QString& typeName) const;
    virtual QString name(const Element& element) const;
    /// What a person reads on it: label, title, content of a field. Mnemonic markers are left out.
    virtual QString text(const Element& element) const = 0;
    /// Whether the text tells the element from others: false for what a person types.
    virtual bool isTextLasting(const Element& element) const;

    /// What tells an element without text from others, a person reads it off a picture or a tool
    /// tip. Empty where there is none, and for elements with a text.
    struct Hint {
        /// A property.
        const char* name = nullptr;
        QString value;
    };
    virtual Hint hint(const Element& element) const;

protected:
    ~ToolkitNames() = default;
};

}  // namespace Tamrix::Agent
