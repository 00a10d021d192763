// Locks: the abstract lock, its one implementation, and the scoped holder.
#pragma once

#include <windows.h>

#include <memory>

/// An abstract lock.
class OSynchronizer {
  public:
    OSynchronizer() = default;
    OSynchronizer(const OSynchronizer&) = delete;
    OSynchronizer& operator=(const OSynchronizer&) = delete;
    virtual ~OSynchronizer() = default;

    virtual void Lock() = 0;
    virtual void Unlock() = 0;
};

/// A Windows critical section: recursive for the thread that holds it, which unlocks as often as it locked.
class OCriticalSection : public OSynchronizer {
  public:
    OCriticalSection();
    ~OCriticalSection() override;

    void Lock() override;
    void Unlock() override;

  private:
    const std::unique_ptr<CRITICAL_SECTION> m_section;
};

/// Holds a lock from construction until `Release` or the end of its scope, whichever comes first.
class OScopedLock {
  public:
    /// Locks; `lock` must outlive the holder.
    explicit OScopedLock(OSynchronizer& lock);
    OScopedLock(const OScopedLock&) = delete;
    OScopedLock& operator=(const OScopedLock&) = delete;
    ~OScopedLock() { Release(); }

    /// Unlocks if the lock is still held by this holder; a second call does nothing.
    void Release();

  private:
    OSynchronizer* m_lock;
    bool m_held = true;
};
