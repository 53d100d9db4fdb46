#pragma once

namespace Tamrix {

/// How an object stands in its application: as something that is pointed to, or as a value.
class ObjectAttribute {
public:
    enum class Kind { Pointer, Reference, Value, Array };

    explicit ObjectAttribute(Kind kind = Kind::Pointer) : m_kind(kind) {}

    bool isPointer() const { return m_kind == Kind::Pointer; }
    bool isReference() const { return m_kind == Kind::Reference; }
    bool isValue() const { return m_kind == Kind::Value; }
    bool isArray() const { return m_kind == Kind::Array; }

private:
    Kind m_kind;
};

}  // namespace Tamrix
