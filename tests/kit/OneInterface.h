// The COM side of the kit's small objects.
#pragma once

#include <windows.h>
#include <unknwn.h>

namespace kit {

/// An object with one interface besides IUnknown, for one thread; made with one reference, its maker's.
template<class Interface>
class OneInterface : public Interface {
  public:
    OneInterface(const OneInterface&) = delete;
    OneInterface& operator=(const OneInterface&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = IsEqualIID(id, __uuidof(IUnknown)) || IsEqualIID(id, __uuidof(Interface));
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (known) {
            AddRef();
        }
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  protected:
    OneInterface() = default;
    virtual ~OneInterface() = default;

  private:
    ULONG m_references = 1;
};

} // namespace kit
