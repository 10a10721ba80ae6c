#pragma once

#include <cstddef>
#include <utility>

namespace QmXmlLib10 {

// Intrusive pointer over the library's reference-counted objects: taking a
// non-null pointer calls AddRef, letting go calls Release. Null is a valid value.
template <class T>
class CSmartPtr {
public:
    CSmartPtr() noexcept = default;
    CSmartPtr(std::nullptr_t) noexcept {}
    CSmartPtr(T* p) noexcept : m_p(p) {
        if (m_p) m_p->AddRef();
    }
    CSmartPtr(const CSmartPtr& other) noexcept : CSmartPtr(other.m_p) {}
    CSmartPtr(CSmartPtr&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    template <class U>
    CSmartPtr(const CSmartPtr<U>& other) noexcept : CSmartPtr(static_cast<U*>(other)) {}
    ~CSmartPtr() {
        if (m_p) m_p->Release();
    }

    // The new reference is taken before the old one is dropped, so assigning an
    // object to the pointer that already holds it is safe.
    CSmartPtr& operator=(T* p) noexcept {
        if (p) p->AddRef();
        T* old = std::exchange(m_p, p);
        if (old) old->Release();
        return *this;
    }
    CSmartPtr& operator=(const CSmartPtr& other) noexcept { return *this = other.m_p; }
    CSmartPtr& operator=(CSmartPtr&& other) noexcept {
        if (this != &other) {
            T* old = std::exchange(m_p, std::exchange(other.m_p, nullptr));
            if (old) old->Release();
        }
        return *this;
    }
    CSmartPtr& operator=(std::nullptr_t) noexcept { return *this = static_cast<T*>(nullptr); }

    operator T*() const noexcept { return m_p; }
    T* operator->() const noexcept { return m_p; }
    T& operator*() const noexcept { return *m_p; }
    T* Get() const noexcept { return m_p; }

    friend bool operator==(const CSmartPtr& a, const CSmartPtr& b) noexcept { return a.m_p == b.m_p; }
    friend bool operator!=(const CSmartPtr& a, const CSmartPtr& b) noexcept { return a.m_p != b.m_p; }
    friend bool operator==(const CSmartPtr& a, const T* b) noexcept { return a.m_p == b; }
    friend bool operator!=(const CSmartPtr& a, const T* b) noexcept { return a.m_p != b; }
    friend bool operator==(const T* a, const CSmartPtr& b) noexcept { return a == b.m_p; }
    friend bool operator!=(const T* a, const CSmartPtr& b) noexcept { return a != b.m_p; }
    friend bool operator==(const CSmartPtr& a, std::nullptr_t) noexcept { return a.m_p == nullptr; }
    friend bool operator!=(const CSmartPtr& a, std::nullptr_t) noexcept { return a.m_p != nullptr; }

private:
    T* m_p = nullptr;
};

}  // namespace QmXmlLib10
