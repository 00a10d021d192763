// Growable arrays: the untyped one, its typed form, and the array of texts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "core/LibraryErrors.h"
#include "core/OString.h"

namespace OCore {

/// For callers that cannot go on without the element: throws std::bad_alloc when the growth did not succeed.
inline void RequireMemory(bool succeeded) {
    if (!succeeded) {
        throw std::bad_alloc();
    }
}

} // namespace OCore

/// A growable array of elements of one size, kept as plain bytes; new elements are zero-filled. What changes
/// its size is for derived arrays, which know how elements end.
template<std::size_t ElementSize>
class OBaseArray {
  public:
    static constexpr std::int32_t kKeepGrowBy = -1;

    OBaseArray() = default;
    OBaseArray(const OBaseArray&) = delete;
    OBaseArray& operator=(const OBaseArray&) = delete;
    virtual ~OBaseArray() { std::free(m_data); }

    std::int32_t GetSize() const { return m_size; }
    std::int32_t GetCapacity() const { return m_capacity; }
    std::int32_t GetGrowBy() const { return m_growBy; }

  protected:
    /// Sets the number of elements; size 0 frees the data. `growBy` is how many elements are added at least
    /// when the capacity grows, 0 for an eighth of the size within 4 to 1024. False, and nothing changed,
    /// when memory is short or `size` is negative.
    [[nodiscard]] bool SetSize(std::int32_t size, std::int32_t growBy = kKeepGrowBy);
    /// Drops the elements from `size` on, as bytes; `size` is not above the present one.
    void Truncate(std::int32_t size);

    void* At(std::int32_t index) const { return m_data + static_cast<std::size_t>(index) * ElementSize; }

    /// Grows by one and opens a zero-filled gap at `index`, from 0 to the size. False when memory is short;
    /// throws LengthError when no further element can be counted.
    [[nodiscard]] bool OpenGap(std::int32_t index);
    /// Closes the gap of one element at `index`, whose contents are dropped as bytes.
    void CloseGap(std::int32_t index);

  private:
    static constexpr std::int32_t kMinimumStep = 4;
    static constexpr std::int32_t kMaximumStep = 1024;

    [[nodiscard]] bool Reallocate(std::int64_t capacity);
    void Zero(std::int32_t from, std::int32_t to) {
        std::memset(At(from), 0, static_cast<std::size_t>(to - from) * ElementSize);
    }

    std::byte* m_data = nullptr; // owned
    std::int32_t m_size = 0;
    std::int32_t m_capacity = 0;
    std::int32_t m_growBy = 0;
};

/// Whether elements may be moved as bytes and all-zero bytes are an empty element. True for plain values; a
/// class whose only contents is a pointer or two that nothing points back to says so here.
template<class T>
inline constexpr bool kMovesAsBytes = std::is_trivially_copyable_v<T>;
template<>
inline constexpr bool kMovesAsBytes<OString> = true;
template<class T>
inline constexpr bool kMovesAsBytes<std::shared_ptr<T>> = true;

/// An `OBaseArray` of elements of type T, which it constructs (empty) and destroys.
template<class T>
class OTypedArray : public OBaseArray<sizeof(T)> {
    static_assert(kMovesAsBytes<T>);
    using Base = OBaseArray<sizeof(T)>;

  public:
    OTypedArray() = default;
    ~OTypedArray() override { Destroy(0); }

    /// As `OBaseArray::SetSize`; elements past the new size are destroyed.
    [[nodiscard]] bool SetSize(std::int32_t size, std::int32_t growBy = Base::kKeepGrowBy) {
        if (size >= 0) {
            Destroy(size);
        }
        return Base::SetSize(size, growBy);
    }

    T& operator[](std::int32_t index) { return *static_cast<T*>(this->At(index)); }
    const T& operator[](std::int32_t index) const { return *static_cast<const T*>(this->At(index)); }

    const T* begin() const { return static_cast<const T*>(this->At(0)); }
    const T* end() const { return static_cast<const T*>(this->At(this->GetSize())); }

    /// Inserts before `index`, from 0 to the size. False when memory is short.
    [[nodiscard]] bool InsertAt(std::int32_t index, T element) {
        if (!this->OpenGap(index)) {
            return false;
        }
        (*this)[index] = std::move(element);
        return true;
    }

    [[nodiscard]] bool Append(T element) { return InsertAt(this->GetSize(), std::move(element)); }

    void RemoveAt(std::int32_t index) {
        std::destroy_at(&(*this)[index]);
        this->CloseGap(index);
    }

    void RemoveAll() {
        Destroy(0);
        this->Truncate(0);
    }

  private:
    void Destroy(std::int32_t from) {
        for (std::int32_t index = from; index < this->GetSize(); ++index) {
            std::destroy_at(&(*this)[index]);
        }
    }
};

/// An ordered list of texts.
using OStringArray = OTypedArray<OString>;

template<std::size_t ElementSize>
bool OBaseArray<ElementSize>::SetSize(std::int32_t size, std::int32_t growBy) {
    if (size < 0) {
        return false;
    }
    const std::int32_t newGrowBy = growBy == kKeepGrowBy ? m_growBy : growBy;
    if (size <= m_size) {
        Truncate(size);
    } else {
        if (!m_data) {
            if (!Reallocate(size)) {
                return false;
            }
        } else if (size > m_capacity) {
            const std::int32_t step =
                newGrowBy != 0 ? newGrowBy : std::clamp(m_size / 8, kMinimumStep, kMaximumStep);
            if (!Reallocate(std::max<std::int64_t>(size, std::int64_t{m_capacity} + step))) {
                return false;
            }
        }
        Zero(m_size, size);
        m_size = size;
    }
    m_growBy = newGrowBy;
    return true;
}

template<std::size_t ElementSize>
void OBaseArray<ElementSize>::Truncate(std::int32_t size) {
    if (size == 0) {
        std::free(m_data);
        m_data = nullptr;
        m_capacity = 0;
    } else if (size < m_size) {
        Zero(size, m_size);
    }
    m_size = size;
}

template<std::size_t ElementSize>
bool OBaseArray<ElementSize>::Reallocate(std::int64_t capacity) {
    if (capacity > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    auto* const data =
        static_cast<std::byte*>(std::realloc(m_data, static_cast<std::size_t>(capacity) * ElementSize));
    if (!data) {
        return false;
    }
    m_data = data;
    m_capacity = static_cast<std::int32_t>(capacity);
    return true;
}

template<std::size_t ElementSize>
bool OBaseArray<ElementSize>::OpenGap(std::int32_t index) {
    const std::int32_t size = m_size;
    if (size == std::numeric_limits<std::int32_t>::max()) {
        throw OCore::LengthError("array too long");
    }
    if (!SetSize(size + 1)) {
        return false;
    }
    std::memmove(At(index + 1), At(index), static_cast<std::size_t>(size - index) * ElementSize);
    Zero(index, index + 1);
    return true;
}

template<std::size_t ElementSize>
void OBaseArray<ElementSize>::CloseGap(std::int32_t index) {
    std::memmove(At(index), At(index + 1), static_cast<std::size_t>(m_size - index - 1) * ElementSize);
    Truncate(m_size - 1);
}
