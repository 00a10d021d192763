// A spy on the task allocator.
#include "tests/kit/TextWatch.h"

#include <objidl.h>

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern "C" void WINAPI SetOaNoCache(void);

namespace kit {
namespace {

/// Memory that is nobody's: the watch over the program's heap blocks does not see it.
template<class T>
struct SystemAllocator {
    using value_type = T;

    SystemAllocator() = default;
    template<class Other>
    SystemAllocator(const SystemAllocator<Other>&) {} // NOLINT: containers convert it

    T* allocate(std::size_t count) {
        void* const memory = HeapAlloc(GetProcessHeap(), 0, count * sizeof(T));
        if (!memory) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t) { HeapFree(GetProcessHeap(), 0, memory); }
    bool operator==(const SystemAllocator&) const = default;
};

template<class Value>
using BlockMap =
    std::map<const char*, Value, std::less<>, SystemAllocator<std::pair<const char* const, Value>>>;

struct Block {
    SIZE_T size = 0;
    std::optional<std::string> label; // set for watched texts
};

/// Keeps the live blocks of the task allocator. The system calls it under the allocator's lock; nothing in
/// here may use that allocator.
class AllocatorSpy final : public IMallocSpy {
  public:
    bool Label(const void* address, std::string_view label) {
        const std::scoped_lock lock(m_mutex);
        const char* const position = static_cast<const char*>(address);
        auto next = m_blocks.upper_bound(position);
        if (next == m_blocks.begin()) {
            return false;
        }
        auto& [start, block] = *--next;
        if (position >= start + block.size) {
            return false;
        }
        block.label = label;
        return true;
    }

    std::vector<std::string> Labels() {
        const std::scoped_lock lock(m_mutex);
        std::vector<std::string> labels;
        for (const auto& [start, block] : m_blocks) {
            if (block.label) {
                labels.push_back(*block.label);
            }
        }
        return labels;
    }

    std::vector<std::string> FreedTwice() {
        const std::scoped_lock lock(m_mutex);
        return m_freedTwice;
    }

    void ForgetLabels() {
        const std::scoped_lock lock(m_mutex);
        m_freed.clear();
        m_freedTwice.clear();
        for (auto& [start, block] : m_blocks) {
            block.label.reset();
        }
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = IsEqualIID(id, __uuidof(IUnknown)) || IsEqualIID(id, __uuidof(IMallocSpy));
        *object = known ? static_cast<IMallocSpy*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; } // lives as long as the process
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override {
        m_mutex.lock();
        m_size = size;
        return size;
    }
    void* STDMETHODCALLTYPE PostAlloc(void* block) override {
        if (block) {
            Enter(block, {m_size, std::nullopt});
        }
        m_mutex.unlock();
        return block;
    }
    void* STDMETHODCALLTYPE PreFree(void* block, WINBOOL) override {
        m_mutex.lock();
        const char* const start = static_cast<const char*>(block);
        if (const auto freed = m_freed.find(start); freed != m_freed.end()) {
            m_freedTwice.push_back(freed->second);
            return nullptr; // which frees nothing
        }
        if (const auto found = m_blocks.find(start); found != m_blocks.end()) {
            if (found->second.label) {
                m_freed[start] = *found->second.label;
            }
            m_blocks.erase(found);
        }
        return block;
    }
    void STDMETHODCALLTYPE PostFree(WINBOOL) override { m_mutex.unlock(); }
    SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** sameBlock, WINBOOL) override {
        m_mutex.lock();
        *sameBlock = block;
        m_size = size;
        m_moving = m_blocks.extract(static_cast<const char*>(block));
        return size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* block, WINBOOL) override {
        Block moved{m_size, std::nullopt};
        if (m_moving) {
            moved.label = m_moving.mapped().label;
        }
        if (block) {
            Enter(block, std::move(moved));
        } else if (m_moving && m_size > 0) {
            m_blocks.insert(std::move(m_moving)); // a failed growth leaves the block as it was
        }
        m_moving = {};
        m_mutex.unlock();
        return block;
    }
    void* STDMETHODCALLTYPE PreGetSize(void* block, WINBOOL) override { return block; }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, WINBOOL) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* block, WINBOOL) override { return block; }
    int STDMETHODCALLTYPE PostDidAlloc(void*, WINBOOL, int owned) override { return owned; }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}

  private:
    using Blocks = BlockMap<Block>;

    void Enter(const void* start, Block block) {
        m_freed.erase(static_cast<const char*>(start));
        m_blocks[static_cast<const char*>(start)] = std::move(block);
    }

    std::mutex m_mutex; // held from each Pre call to its Post call
    Blocks m_blocks;
    BlockMap<std::string> m_freed; // watched texts that are freed, by the place where they were
    std::vector<std::string> m_freedTwice;
    Blocks::node_type m_moving;
    SIZE_T m_size = 0;
};

long g_given = 0;

/// Never destroyed: the allocator is used until the very end of the process.
AllocatorSpy& TheSpy() {
    static AllocatorSpy& spy = *new AllocatorSpy;
    return spy;
}

} // namespace

void TextWatch::Start() {
    static const bool registered = [] {
        SetOaNoCache();
        return SUCCEEDED(CoRegisterMallocSpy(&TheSpy()));
    }();
    if (!registered) {
        throw std::runtime_error("the task allocator has a spy already");
    }
    TheSpy().ForgetLabels();
}

void TextWatch::Forget() {
    TheSpy().ForgetLabels();
}

BSTR TextWatch::Give(std::wstring_view text, std::string_view label) {
    const BSTR made = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    Receive(made, label);
    InterlockedIncrement(&g_given);
    return made;
}

long TextWatch::Given() {
    return g_given;
}

void TextWatch::ForgetGiven() {
    g_given = 0;
}

bool TextWatch::Receive(BSTR text, std::string_view label) {
    return !text || TheSpy().Label(text, label);
}

std::vector<std::string> TextWatch::Live() {
    return TheSpy().Labels();
}

std::vector<std::string> TextWatch::FreedTwice() {
    return TheSpy().FreedTwice();
}

} // namespace kit
