#pragma once

#include <cstddef>
#include <utility>

#include "base/export.h"

namespace Tamrix {

/// Base of all reference-counted things that scripts hold.
///
/// The count starts at 0 and is a plain int: objects are touched on the script thread only.
/// Ownership lies with the SharedPtr objects that point here; the last one to go deletes.
class TAMRIX_EXPORT Shared {
public:
    Shared() = default;
    /// A copy is an object of its own: it starts with a count of 0.
    Shared(const Shared&) {}
    Shared& operator=(const Shared&) { return *this; }
    virtual ~Shared() = default;

    /// The number of SharedPtr objects that point here.
    int referenceCount() const { return m_referenceCount; }

private:
    template <typename T>
    friend class SharedPtr;

    mutable int m_referenceCount = 0;
};

/// Intrusive pointer to something derived from Shared. Null is legal everywhere.
/// Script thread only.
template <typename T>
class SharedPtr {
public:
    SharedPtr() = default;
    SharedPtr(std::nullptr_t) {}
    SharedPtr(T* object) : m_object(object) { acquire(); }
    SharedPtr(const SharedPtr& other) : m_object(other.m_object) { acquire(); }
    SharedPtr(SharedPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    template <typename U>
    SharedPtr(const SharedPtr<U>& other) : SharedPtr(static_cast<T*>(other.get())) {}
    ~SharedPtr() { release(); }

    SharedPtr& operator=(const SharedPtr& other) {
        SharedPtr(other).swap(*this);
        return *this;
    }
    SharedPtr& operator=(SharedPtr&& other) noexcept {
        SharedPtr(std::move(other)).swap(*this);
        return *this;
    }

    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    void swap(SharedPtr& other) noexcept { std::swap(m_object, other.m_object); }
    void reset() { SharedPtr().swap(*this); }

private:
    void acquire() const {
        if (m_object)
            ++static_cast<const Shared*>(m_object)->m_referenceCount;
    }
    void release() {
        if (m_object && --static_cast<const Shared*>(m_object)->m_referenceCount == 0)
            delete m_object;
    }

    T* m_object = nullptr;
};

template <typename T, typename U>
bool operator==(const SharedPtr<T>& left, const SharedPtr<U>& right) {
    return left.get() == right.get();
}

template <typename T>
bool operator==(const SharedPtr<T>& left, std::nullptr_t) {
    return left.get() == nullptr;
}

/// The same object seen as a derived class; the caller knows that it is one.
template <typename T, typename U>
SharedPtr<T> staticPointerCast(const SharedPtr<U>& pointer) {
    return SharedPtr<T>(static_cast<T*>(pointer.get()));
}

/// The same object seen as a derived class, null when it is of another class.
template <typename T, typename U>
SharedPtr<T> dynamicPointerCast(const SharedPtr<U>& pointer) {
    return SharedPtr<T>(dynamic_cast<T*>(pointer.get()));
}

}  // namespace Tamrix
