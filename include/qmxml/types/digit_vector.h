// The digit array behind CBigInteger and CDecimal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <type_traits>

namespace QmXmlLib10 {

// A vector of decimal digits that keeps up to kInline of them inside itself.
// Bound documents hold a decimal per price or amount, each an integer part
// and a fraction of a few digits: kept inline, reading one costs no heap
// block, and the array is no larger than a std::vector. Longer numbers move
// to the heap as a vector would. Offers the part of std::vector's interface
// the arithmetic uses; iterators are plain pointers.
class CDigitVector {
public:
    using value_type = signed char;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = signed char&;
    using const_reference = const signed char&;
    using pointer = signed char*;
    using const_pointer = const signed char*;
    using iterator = signed char*;
    using const_iterator = const signed char*;

    static constexpr size_type kInline = 16;

    CDigitVector() noexcept {}
    explicit CDigitVector(size_type count) { assign(count, 0); }
    CDigitVector(size_type count, signed char value) { assign(count, value); }
    template <class It, class = std::enable_if_t<!std::is_integral_v<It>>>
    CDigitVector(It first, It last) {
        assign(first, last);
    }
    CDigitVector(std::initializer_list<signed char> digits) { assign(digits.begin(), digits.end()); }
    CDigitVector(const CDigitVector& other) { assign(other.begin(), other.end()); }
    CDigitVector(CDigitVector&& other) noexcept { Steal(other); }
    CDigitVector& operator=(const CDigitVector& other) {
        if (this != &other) assign(other.begin(), other.end());
        return *this;
    }
    CDigitVector& operator=(CDigitVector&& other) noexcept {
        if (this != &other) {
            Free();
            Steal(other);
        }
        return *this;
    }
    ~CDigitVector() { Free(); }

    size_type size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }
    size_type capacity() const noexcept { return m_capacity; }
    signed char* data() noexcept { return IsInline() ? m_inline : m_heap; }
    const signed char* data() const noexcept { return IsInline() ? m_inline : m_heap; }
    iterator begin() noexcept { return data(); }
    iterator end() noexcept { return data() + m_size; }
    const_iterator begin() const noexcept { return data(); }
    const_iterator end() const noexcept { return data() + m_size; }
    const_iterator cbegin() const noexcept { return begin(); }
    const_iterator cend() const noexcept { return end(); }
    signed char& operator[](size_type i) noexcept { return data()[i]; }
    signed char operator[](size_type i) const noexcept { return data()[i]; }
    signed char& front() noexcept { return data()[0]; }
    signed char front() const noexcept { return data()[0]; }
    signed char& back() noexcept { return data()[m_size - 1]; }
    signed char back() const noexcept { return data()[m_size - 1]; }

    void clear() noexcept { m_size = 0; }
    void reserve(size_type count) {
        if (count > m_capacity) Grow(count);
    }
    void push_back(signed char value) {
        if (m_size == m_capacity) Grow(m_size + 1);
        data()[m_size++] = value;
    }
    void pop_back() noexcept { --m_size; }
    void resize(size_type count, signed char value = 0) {
        reserve(count);
        if (count > m_size) std::memset(data() + m_size, value, count - m_size);
        m_size = static_cast<std::uint32_t>(count);
    }
    void assign(size_type count, signed char value) {
        m_size = 0;
        resize(count, value);
    }
    // [first, last) must not lie in this array.
    template <class It, class = std::enable_if_t<!std::is_integral_v<It>>>
    void assign(It first, It last) {
        const auto count = static_cast<size_type>(std::distance(first, last));
        m_size = 0;
        reserve(count);
        signed char* out = data();
        for (; first != last; ++first) *out++ = static_cast<signed char>(*first);
        m_size = static_cast<std::uint32_t>(count);
    }
    iterator insert(const_iterator position, size_type count, signed char value) {
        const size_type at = static_cast<size_type>(position - data());
        reserve(m_size + count);
        signed char* base = data();
        std::memmove(base + at + count, base + at, m_size - at);
        std::memset(base + at, value, count);
        m_size += static_cast<std::uint32_t>(count);
        return base + at;
    }
    iterator erase(const_iterator first, const_iterator last) noexcept {
        signed char* base = data();
        const size_type at = static_cast<size_type>(first - base);
        const size_type count = static_cast<size_type>(last - first);
        std::memmove(base + at, base + at + count, m_size - at - count);
        m_size -= static_cast<std::uint32_t>(count);
        return base + at;
    }

    friend bool operator==(const CDigitVector& a, const CDigitVector& b) noexcept {
        return a.m_size == b.m_size && (a.m_size == 0 || std::memcmp(a.data(), b.data(), a.m_size) == 0);
    }
    friend bool operator!=(const CDigitVector& a, const CDigitVector& b) noexcept { return !(a == b); }

private:
    bool IsInline() const noexcept { return m_capacity == kInline; }
    // Room for at least count digits; throws std::bad_alloc past the 32-bit size.
    void Grow(size_type count);
    void Free() noexcept {
        if (!IsInline()) delete[] m_heap;
        m_capacity = kInline;
        m_size = 0;
    }
    void Steal(CDigitVector& other) noexcept {
        m_size = other.m_size;
        m_capacity = other.m_capacity;
        if (other.IsInline()) {
            std::memcpy(m_inline, other.m_inline, other.m_size);
        } else {
            m_heap = other.m_heap;
        }
        other.m_capacity = kInline;
        other.m_size = 0;
    }

    std::uint32_t m_size = 0;
    std::uint32_t m_capacity = kInline;  // kInline exactly: the digits are in m_inline
    union {
        signed char* m_heap;
        signed char m_inline[kInline];
    };
};

}  // namespace QmXmlLib10
