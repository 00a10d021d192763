// Event-log masks and the registry of their sources.
#include "core/OEventLog.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include "core/OArray.h"
#include "core/OHashMap.h"
#include "core/ORegistry.h"
#include "core/OString.h"
#include "core/OSynchronizer.h"
#include "core/SystemCalls.h"

namespace {

constexpr std::uint32_t kRefreshMilliseconds = 5'000;
constexpr std::uint32_t kSweepMilliseconds = 300'000;
constexpr std::uint32_t kUnusedMilliseconds = 120'000;

/// The bases of all sources, under one lock; lives until the process ends.
struct LogRegistry {
    OCriticalSection lock;
    OStringMap<std::shared_ptr<OEventLogBase>> bases;
    // Never moved on, on purpose: five minutes after the system's start every refresh sweeps as well.
    std::atomic<std::uint32_t> lastSweep{0};
};

LogRegistry& TheLogRegistry() {
    static LogRegistry& registry = *new LogRegistry;
    return registry;
}

std::uint32_t Now() {
    return static_cast<std::uint32_t>(OCore::TheSystemCalls().getTickCount64());
}

} // namespace

OEventLogBase::OEventLogBase(const OString& source)
    : m_source(source), m_maskPath(OString("LOCAL:DebugLogMasks\\") + source) {
    // Threads read these two at the same time, so none of them may have to convert one.
    m_source.MakeBothForms();
    m_maskPath.MakeBothForms();
    const std::uint32_t mask = ReadMask();
    m_mask = mask;
    m_lastRefresh = Now();
    ORegistry().WriteDword(m_maskPath, mask); // without the right to write, the mask is simply not stored
}

OEventLogBase::~OEventLogBase() {
    if (m_eventSource) {
        OCore::TheSystemCalls().deregisterEventSource(m_eventSource);
    }
}

bool OEventLogBase::IsEnabled(std::uint32_t bits) {
    const std::uint32_t last = m_lastRefresh; // before the clock: meanwhile a thread may store a later tick
    const std::uint32_t now = Now();
    if (now - last > kRefreshMilliseconds) {
        if (!m_maskPath.IsEmpty()) {
            m_lastRefresh = now;
            m_mask = ReadMask();
        }
        if (now - TheLogRegistry().lastSweep > kSweepMilliseconds) {
            Sweep();
            m_lastRefresh = now;
        }
    }
    return (m_mask & bits) != 0;
}

std::shared_ptr<OEventLogBase> OEventLogBase::Fetch(const OString& source) {
    LogRegistry& registry = TheLogRegistry();
    const OScopedLock hold(registry.lock);
    std::shared_ptr<OEventLogBase> base = registry.bases.Find(source);
    if (!base) {
        base = std::make_shared<OEventLogBase>(source);
        OCore::RequireMemory(registry.bases.Insert(source, base));
    }
    return base;
}

std::int32_t OEventLogBase::CountBases() {
    LogRegistry& registry = TheLogRegistry();
    const OScopedLock hold(registry.lock);
    return registry.bases.GetSize();
}

/// Removes every base that no log holds and that has not been refreshed for a while.
void OEventLogBase::Sweep() {
    LogRegistry& registry = TheLogRegistry();
    const OScopedLock hold(registry.lock);
    const std::uint32_t now = Now();
    OStringArray unused;
    for (const OString& source : registry.bases.Keys()) {
        const std::shared_ptr<OEventLogBase> base = registry.bases.Find(source);
        const bool held = base.use_count() != 2; // besides the registry and this function
        if (!held && now - base->m_lastRefresh > kUnusedMilliseconds) {
            OCore::RequireMemory(unused.Append(source));
        }
    }
    for (const OString& source : unused) {
        registry.bases.Remove(source);
    }
}

std::uint32_t OEventLogBase::ReadMask() const {
    std::uint32_t mask = 0;
    const std::int32_t size = ORegistry().ReadValue(m_maskPath, &mask, sizeof(mask));
    return size == sizeof(mask) ? mask : kDefaultMask;
}

OEventLog::OEventLog(const OString& source) : m_base(OEventLogBase::Fetch(source)) {}

OEventLog::OEventLog(std::shared_ptr<OEventLog> parent) : m_parent(std::move(parent)) {}

OEventLog::~OEventLog() = default;

bool OEventLog::IsEnabled(std::uint32_t bits) const {
    for (const OEventLog* log = this; log; log = log->m_parent.get()) {
        if (log->m_base) {
            return log->m_base->IsEnabled(bits);
        }
    }
    return false;
}
