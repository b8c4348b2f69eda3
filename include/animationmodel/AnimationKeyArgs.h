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
#include <utility>
#include <vector>

namespace Kiv {

/// The arguments of one command: up to two floats, kept inside the command. To its users it is a
/// `std::vector<float>` with a capacity of 2, which the standard calls
/// `std::inplace_vector<float, 2>`.
///
/// What would hold more than two throws std::bad_alloc and changes nothing. `at` throws
/// std::out_of_range; every other access is to an element that is there. Copies share nothing.
///
/// A trivial type, so that layers are copied by one plain memory copy: `{}` is empty, but one that
/// is defined without any initializer holds nothing that may be read, as a plain float does.
class AnimationKeyArgs {
public:
    /// @{
    /// As in `std::vector<float>`.
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
    AnimationKeyArgs(std::initializer_list<float> given) : count(0), values{} { assign(given); }
    AnimationKeyArgs(const std::vector<float>& given) : count(0), values{} { *this = given; }
    explicit AnimationKeyArgs(size_type size, float value = 0) : count(0), values{} {
        resize(size, value);
    }
    template <class Iterator, class = typename std::iterator_traits<Iterator>::iterator_category>
    AnimationKeyArgs(Iterator first, Iterator last) : count(0), values{} {
        assign(first, last);
    }

    AnimationKeyArgs& operator=(std::initializer_list<float> given) {
        assign(given);
        return *this;
    }
    AnimationKeyArgs& operator=(const std::vector<float>& given) {
        assign(given.begin(), given.end());
        return *this;
    }
    void assign(size_type size, float value) {
        AnimationKeyArgs result{};
        result.resize(size, value);
        *this = result;
    }
    void assign(std::initializer_list<float> given) { assign(given.begin(), given.end()); }
    template <class Iterator, class = typename std::iterator_traits<Iterator>::iterator_category>
    void assign(Iterator first, Iterator last) {
        AnimationKeyArgs result{};
        for (; first != last; ++first)
            result.push_back(static_cast<float>(*first));
        *this = result;
    }

    float& operator[](size_type index) {
        assert(index < size());
        return values[index];
    }
    const float& operator[](size_type index) const {
        assert(index < size());
        return values[index];
    }
    float& at(size_type index) {
        checkIndex(index);
        return values[index];
    }
    const float& at(size_type index) const {
        checkIndex(index);
        return values[index];
    }
    float& front() { return (*this)[0]; }
    const float& front() const { return (*this)[0]; }
    float& back() { return (*this)[size() - 1]; }
    const float& back() const { return (*this)[size() - 1]; }
    float* data() noexcept { return values; }
    const float* data() const noexcept { return values; }

    iterator begin() noexcept { return values; }
    const_iterator begin() const noexcept { return values; }
    const_iterator cbegin() const noexcept { return values; }
    iterator end() noexcept { return values + count; }
    const_iterator end() const noexcept { return values + count; }
    const_iterator cend() const noexcept { return values + count; }
    reverse_iterator rbegin() noexcept { return reverse_iterator(end()); }
    const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
    const_reverse_iterator crbegin() const noexcept { return rbegin(); }
    reverse_iterator rend() noexcept { return reverse_iterator(begin()); }
    const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
    const_reverse_iterator crend() const noexcept { return rend(); }

    bool empty() const noexcept { return count == 0; }
    size_type size() const noexcept { return count; }
    static constexpr size_type max_size() noexcept { return 2; }
    static constexpr size_type capacity() noexcept { return 2; }
    static void reserve(size_type size) {
        if (size > capacity())
            throw std::bad_alloc();
    }
    static constexpr void shrink_to_fit() noexcept {}

    void resize(size_type size, float value = 0) {
        reserve(size);
        std::fill(values + std::min<size_type>(count, size), values + size, value);
        count = static_cast<std::uint32_t>(size);
    }
    void push_back(float value) { resize(size() + 1, value); }
    float& emplace_back(float value = 0) {
        push_back(value);
        return back();
    }
    void pop_back() {
        assert(!empty());
        --count;
    }
    void clear() noexcept { count = 0; }

    iterator insert(const_iterator place, float value) {
        iterator inserted = begin() + (place - begin());
        push_back(value);
        std::rotate(inserted, end() - 1, end());
        return inserted;
    }
    iterator erase(const_iterator place) { return erase(place, place + 1); }
    iterator erase(const_iterator first, const_iterator last) {
        iterator behind = begin() + (first - begin());
        count = static_cast<std::uint32_t>(std::copy(last, cend(), behind) - begin());
        return behind;
    }
    void swap(AnimationKeyArgs& other) noexcept { std::swap(*this, other); }
    /// @}

    /// The arguments as a vector of their own.
    operator std::vector<float>() const { return std::vector<float>(begin(), end()); }

    /// \name Comparison
    /// Number and values, with another one or with a vector: a NaN differs from itself, and 0
    /// equals -0.
    /// @{
    friend bool operator==(const AnimationKeyArgs& a, const AnimationKeyArgs& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator==(const AnimationKeyArgs& a, const std::vector<float>& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator==(const std::vector<float>& a, const AnimationKeyArgs& b) noexcept {
        return b == a;
    }
    friend bool operator!=(const AnimationKeyArgs& a, const AnimationKeyArgs& b) noexcept {
        return !(a == b);
    }
    friend bool operator!=(const AnimationKeyArgs& a, const std::vector<float>& b) noexcept {
        return !(a == b);
    }
    friend bool operator!=(const std::vector<float>& a, const AnimationKeyArgs& b) noexcept {
        return !(b == a);
    }
    /// @}

private:
    void checkIndex(size_type index) const {
        if (index >= size())
            throw std::out_of_range("AnimationKeyArgs::at");
    }

    std::uint32_t count;
    float values[2];
};

} // namespace Kiv
