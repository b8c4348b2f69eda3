#pragma once

#include <animationmodel/export.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <new>
#include <stdexcept>
#include <vector>

namespace Kiv {

/// The arguments of one command: up to two floats, kept inside the command.
///
/// It follows `std::inplace_vector<float, 2>`, a vector with a capacity of 2, without
/// `try_emplace_back`, `unchecked_emplace_back`, `append_range`, `try_append_range`, `assign_range`
/// and `insert_range`. It also converts from and to a `std::vector<float>`. What would hold more
/// than two throws std::bad_alloc and changes nothing; `try_push_back` returns null instead. `at`
/// throws std::out_of_range. All other access has to be to an element that is there, or to room for
/// one. Copies share nothing.
///
/// It is a trivial type, for layers are copied by one plain memory copy. So `AnimationKeyArgs a{}`
/// is empty, but `AnimationKeyArgs a` holds nothing that may be read, like `float b`.
class AnimationKeyArgs {
    template <class Iterator>
    using IfIterator = typename std::iterator_traits<Iterator>::iterator_category;
    using List = std::initializer_list<float>;
    using Vector = std::vector<float>;
    using Args = AnimationKeyArgs;

public:
    /// @{
    /// As in `std::inplace_vector`.
    using value_type = float;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = float&;
    using const_reference = const float&;
    using pointer = float*;
    using const_pointer = const float*;
    using iterator = float*;
    using const_iterator = const float*;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;
    AnimationKeyArgs() = default;
    constexpr AnimationKeyArgs(List given) : Args(given.begin(), given.end()) {}
    constexpr explicit AnimationKeyArgs(size_type size, float value = 0) : count(0), values() {
        resize(size, value);
    }
    template <class Iterator, class = IfIterator<Iterator>>
    constexpr AnimationKeyArgs(Iterator first, Iterator last) : count(0), values() {
        for (; first != last; ++first)
            push_back(static_cast<float>(*first));
    }

    constexpr Args& operator=(List given) { return *this = Args(given); }
    constexpr void assign(size_type size, float value) { *this = Args(size, value); }
    constexpr void assign(List given) { *this = given; }
    template <class Iterator, class = IfIterator<Iterator>>
    constexpr void assign(Iterator first, Iterator last) {
        *this = Args(first, last);
    }

    constexpr float& operator[](size_type i) { return assert(i < count), values[i]; }
    constexpr const float& operator[](size_type i) const { return assert(i < count), values[i]; }
    constexpr float& at(size_type i) { return checkIndex(i), values[i]; }
    constexpr const float& at(size_type i) const { return checkIndex(i), values[i]; }
    constexpr float& front() { return (*this)[0]; }
    constexpr const float& front() const { return (*this)[0]; }
    constexpr float& back() { return (*this)[size() - 1]; }
    constexpr const float& back() const { return (*this)[size() - 1]; }
    constexpr float* data() noexcept { return values; }
    constexpr const float* data() const noexcept { return values; }

    constexpr iterator begin() noexcept { return values; }
    constexpr const_iterator begin() const noexcept { return values; }
    constexpr const_iterator cbegin() const noexcept { return values; }
    constexpr iterator end() noexcept { return values + count; }
    constexpr const_iterator end() const noexcept { return values + count; }
    constexpr const_iterator cend() const noexcept { return values + count; }
    constexpr auto rbegin() noexcept { return reverse_iterator(end()); }
    constexpr auto rbegin() const noexcept { return const_reverse_iterator(end()); }
    constexpr auto crbegin() const noexcept { return const_reverse_iterator(end()); }
    constexpr auto rend() noexcept { return reverse_iterator(begin()); }
    constexpr auto rend() const noexcept { return const_reverse_iterator(begin()); }
    constexpr auto crend() const noexcept { return const_reverse_iterator(begin()); }

    [[nodiscard]] constexpr bool empty() const noexcept { return count == 0; }
    [[nodiscard]] constexpr size_type size() const noexcept { return count; }
    static constexpr size_type max_size() noexcept { return 2; }
    static constexpr size_type capacity() noexcept { return 2; }
    static constexpr void reserve(size_type size) {
        if (size > capacity())
            throw std::bad_alloc();
    }
    static constexpr void shrink_to_fit() noexcept {}
    constexpr void resize(size_type size, float value = 0) {
        reserve(size);
        while (count < size)
            unchecked_push_back(value);
        count = static_cast<std::uint32_t>(size);
    }
    constexpr float& unchecked_push_back(float value) {
        assert(count < capacity());
        return values[count++] = value;
    }
    constexpr float& push_back(float value) {
        reserve(size() + 1);
        return unchecked_push_back(value);
    }
    constexpr float* try_push_back(float value) {
        return count < capacity() ? &unchecked_push_back(value) : nullptr;
    }
    constexpr float& emplace_back(float value = 0) { return push_back(value); }
    constexpr void pop_back() {
        assert(!empty());
        --count;
    }
    constexpr void clear() noexcept { count = 0; }
    template <class Iterator, class = IfIterator<Iterator>>
    constexpr iterator insert(const_iterator at, Iterator first, Iterator last) {
        return replace(at, at, Args(first, last));
    }
    constexpr iterator insert(const_iterator at, size_type size, float value) {
        return replace(at, at, Args(size, value));
    }
    constexpr iterator insert(const_iterator at, List given) { return replace(at, at, given); }
    constexpr iterator insert(const_iterator at, float value) { return insert(at, {value}); }
    constexpr iterator emplace(const_iterator at, float value = 0) { return insert(at, {value}); }
    constexpr iterator erase(const_iterator at) { return replace(at, at + 1, Args{}); }
    constexpr iterator erase(const_iterator first, const_iterator last) {
        return replace(first, last, Args{});
    }
    constexpr void swap(Args& other) noexcept {
        const Args before = *this;
        *this = other;
        other = before;
    }
    friend constexpr void swap(Args& a, Args& b) noexcept { a.swap(b); }
    /// @}

    /// @{
    /// From and to a vector or a range of the same values.
    AnimationKeyArgs(const Vector& given) : Args(given.begin(), given.end()) {}
    Args& operator=(const Vector& given) { return *this = Args(given); }
    operator Vector() const { return Vector(begin(), end()); }
#ifdef __cpp_lib_containers_ranges
    template <class Range>
    constexpr AnimationKeyArgs(std::from_range_t /*tag*/, Range&& range) : count(0), values() {
        for (const float value : range)
            push_back(value);
    }
#endif
    /// @}

    /// \name Comparison
    /// By number and values, with another one or with a vector: a NaN differs from itself, and 0
    /// equals -0. The order is lexicographic, and of arguments alone.
    /// @{
    friend constexpr bool operator==(const Args& a, const Args& b) noexcept {
        return a.count == b.count && (a.count < 1 || a.values[0] == b.values[0]) &&
               (a.count < 2 || a.values[1] == b.values[1]);
    }
    friend bool operator==(const Args& a, const Vector& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    // clang-format off
    friend bool operator==(const Vector& a, const Args& b) noexcept { return b == a; }
#ifdef __cpp_impl_three_way_comparison
    friend constexpr std::partial_ordering operator<=>(const Args& a, const Args& b) noexcept {
        for (std::uint32_t i = 0; i < a.count && i < b.count; ++i)
            if (a.values[i] != b.values[i])
                return a.values[i] <=> b.values[i];
        return a.count <=> b.count;
    }
#else
    friend constexpr bool operator!=(const Args& a, const Args& b) noexcept { return !(a == b); }
    friend bool operator!=(const Args& a, const Vector& b) noexcept { return !(a == b); }
    friend bool operator!=(const Vector& a, const Args& b) noexcept { return !(b == a); }
    friend bool operator<(const Args& a, const Args& b) noexcept {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator>(const Args& a, const Args& b) noexcept { return b < a; }
    friend bool operator<=(const Args& a, const Args& b) noexcept { return !(b < a); }
    friend bool operator>=(const Args& a, const Args& b) noexcept { return !(a < b); }
#endif
    // clang-format on
    /// @}

private:
    /// Puts others in the place of [from, to); returns where they begin.
    constexpr iterator replace(const_iterator from, const_iterator to, const Args& others) {
        Args result(cbegin(), from);
        for (const float value : others)
            result.push_back(value);
        for (; to != cend(); ++to)
            result.push_back(*to);
        const difference_type index = from - cbegin();
        *this = result;
        return begin() + index;
    }
    constexpr void checkIndex(size_type index) const {
        if (index >= size())
            throw std::out_of_range("AnimationKeyArgs::at");
    }

    std::uint32_t count;
    float values[2];
};

/// Takes out the arguments for which `unwanted` is true; returns how many. Found by its argument,
/// without a namespace.
template <class Unwanted>
constexpr std::size_t erase_if(AnimationKeyArgs& args, Unwanted unwanted) {
    const auto first = std::remove_if(args.begin(), args.end(), unwanted);
    const auto erased = static_cast<std::size_t>(args.end() - first);
    args.resize(args.size() - erased);
    return erased;
}
/// Takes out the arguments that equal `value`; returns how many.
constexpr std::size_t erase(AnimationKeyArgs& args, float value) {
    return erase_if(args, [value](float argument) { return argument == value; });
}

} // namespace Kiv
