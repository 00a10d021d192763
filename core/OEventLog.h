// Diagnostic event log: category masks per source, kept in the registry.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>

#include "core/OArray.h"
#include "core/OString.h"
#include "core/OSynchronizer.h"

/// What all logs of one source share: its category mask, refreshed from the registry value
/// "LOCAL:DebugLogMasks\<source>". Safe to ask from any thread.
class OEventLogBase {
  public:
    static constexpr std::uint32_t kDefaultMask = 0xE0000000;

    /// Reads the mask, or takes the default one, and writes it back so that it can be found and edited.
    explicit OEventLogBase(const OString& source);
    OEventLogBase(const OEventLogBase&) = delete;
    OEventLogBase& operator=(const OEventLogBase&) = delete;
    virtual ~OEventLogBase();

    /// Whether any of the category bits is switched on; reads the registry again when 5 seconds have passed.
    bool IsEnabled(std::uint32_t bits);

    /// The source's shared base, made if there is none.
    static std::shared_ptr<OEventLogBase> Fetch(const OString& source);
    /// How many sources have a base, for tests to look at; those without a log are swept out after two
    /// minutes.
    static std::int32_t CountBases();

  private:
    static void Sweep();
    std::uint32_t ReadMask() const;

    std::atomic<std::uint32_t> m_mask{kDefaultMask};
    std::atomic<std::uint32_t> m_lastRefresh{0}; // low 32 bits of the tick count, milliseconds
    OCriticalSection m_lock;

  protected:
    HANDLE m_eventSource = nullptr; // owned Windows event-log source; never set in this tool

  private:
    OString m_source;
    OString m_second;                     // not read in this tool
    [[maybe_unused]] bool m_flag = false; // not read in this tool
    OString m_maskPath;
};

/// The tags of a log; empty in this tool.
class OEventLogTagList {
  public:
    virtual ~OEventLogTagList() = default;

  private:
    OStringArray m_tags;
};

/// A component's log, held through a shared pointer. It answers by its source's base or, when it has none, by
/// that of the nearest parent that has one.
class OEventLog : public OEventLogTagList {
  public:
    explicit OEventLog(const OString& source);
    explicit OEventLog(std::shared_ptr<OEventLog> parent);
    OEventLog(const OEventLog&) = delete;
    OEventLog& operator=(const OEventLog&) = delete;
    ~OEventLog() override;

    /// Whether any of the category bits is switched on; false without any base.
    bool IsEnabled(std::uint32_t bits) const;

    /// Null for a log that has a parent; for tests to look at.
    const std::shared_ptr<OEventLogBase>& Base() const { return m_base; }

  private:
    OCriticalSection m_lock;
    [[maybe_unused]] std::int32_t m_firstSetting = 45;   // not read in this tool
    [[maybe_unused]] std::int32_t m_secondSetting = 120; // not read in this tool
    std::shared_ptr<OEventLogBase> m_base;
    std::shared_ptr<OEventLog> m_parent;
};
