// Move-only owners of what crosses the automation boundary: interface pointers, BSTRs and VARIANTs. None of
// them throws.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <unknwn.h>

#include <string_view>
#include <utility>

namespace kemba {

/// Owns one reference to an interface, or none.
template<class Interface>
class ComPtr {
  public:
    ComPtr() = default;
    /// Takes over the caller's reference.
    explicit ComPtr(Interface* owned) : m_pointer(owned) {}
    ComPtr(ComPtr&& other) noexcept : m_pointer(std::exchange(other.m_pointer, nullptr)) {}
    ComPtr& operator=(ComPtr&& other) noexcept {
        std::swap(m_pointer, other.m_pointer);
        return *this;
    }
    ~ComPtr() { Reset(); }

    /// A further reference to an interface that somebody else owns; null gives an empty pointer.
    static ComPtr Share(Interface* shared) {
        if (shared) {
            shared->AddRef();
        }
        return ComPtr(shared);
    }

    Interface* Get() const { return m_pointer; }
    Interface* operator->() const { return m_pointer; }
    Interface& operator*() const { return *m_pointer; }
    explicit operator bool() const { return m_pointer != nullptr; }

    void Reset() {
        if (Interface* const released = std::exchange(m_pointer, nullptr)) {
            released->Release();
        }
    }

    /// The place for an out parameter; what was held is released first.
    Interface** Put() {
        Reset();
        return &m_pointer;
    }

    /// Hands the reference over to the caller.
    [[nodiscard]] Interface* Detach() { return std::exchange(m_pointer, nullptr); }

  private:
    Interface* m_pointer = nullptr;
};

/// A new object of our own with its first reference.
template<class Object, class... Arguments>
ComPtr<Object> MakeObject(Arguments&&... arguments) {
    return ComPtr<Object>(new Object(std::forward<Arguments>(arguments)...));
}

/// Owns one BSTR, or none.
class OwnedBstr {
  public:
    OwnedBstr() = default;
    /// A copy of the text, not null even for an empty text: null means that it could not be allocated.
    [[nodiscard]] static OwnedBstr Copy(std::wstring_view text) noexcept {
        OwnedBstr copy;
        copy.m_text = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        return copy;
    }
    OwnedBstr(OwnedBstr&& other) noexcept : m_text(std::exchange(other.m_text, nullptr)) {}
    OwnedBstr& operator=(OwnedBstr&& other) noexcept {
        std::swap(m_text, other.m_text);
        return *this;
    }
    ~OwnedBstr() { SysFreeString(m_text); }

    BSTR Get() const { return m_text; }
    explicit operator bool() const { return m_text != nullptr; }
    /// Zero-terminated and never null: a null BSTR counts as the empty text.
    const wchar_t* Text() const { return m_text ? m_text : L""; }

    /// The place for an out parameter; what was held is freed first.
    BSTR* Put() {
        SysFreeString(std::exchange(m_text, nullptr));
        return &m_text;
    }

    /// Hands the BSTR over to the caller.
    [[nodiscard]] BSTR Detach() { return std::exchange(m_text, nullptr); }

  private:
    BSTR m_text = nullptr;
};

/// Owns one VARIANT.
class OwnedVariant {
  public:
    OwnedVariant() { VariantInit(&m_value); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() { VariantClear(&m_value); }

    /// An object with a reference of its own, or with null.
    explicit OwnedVariant(IDispatch* shared) : OwnedVariant() {
        if (shared) {
            shared->AddRef();
        }
        m_value.vt = VT_DISPATCH;
        m_value.pdispVal = shared;
    }

    /// The standard value for an optional argument that is left out.
    static OwnedVariant Omitted() { return OwnedVariant(DISP_E_PARAMNOTFOUND); }

    const VARIANT& Get() const { return m_value; }

    /// The place for an out parameter; what was held is cleared first.
    VARIANT* Put() {
        VariantClear(&m_value);
        return &m_value;
    }

    /// Hands the value over to the caller.
    [[nodiscard]] VARIANT Detach() { return std::exchange(m_value, VARIANT{}); }

  private:
    explicit OwnedVariant(SCODE error) : OwnedVariant() {
        m_value.vt = VT_ERROR;
        m_value.scode = error;
    }

    VARIANT m_value;
};

} // namespace kemba
