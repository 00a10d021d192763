// Locks over Windows critical sections.
#include "core/OSynchronizer.h"

#include "core/LockOrder.h"

OCriticalSection::OCriticalSection() : m_section(new CRITICAL_SECTION) {
    InitializeCriticalSection(m_section.get());
}

OCriticalSection::~OCriticalSection() {
    OCore::LockIsGone(m_section.get());
    DeleteCriticalSection(m_section.get());
}

void OCriticalSection::Lock() {
    OCore::LockIsTaken(m_section.get()); // before a wait that may have no end
    EnterCriticalSection(m_section.get());
}

void OCriticalSection::Unlock() {
    OCore::LockIsGivenBack(m_section.get());
    LeaveCriticalSection(m_section.get());
}

OScopedLock::OScopedLock(OSynchronizer& lock) : m_lock(&lock) {
    m_lock->Lock();
}

void OScopedLock::Release() {
    if (m_held) {
        m_lock->Unlock();
        m_held = false;
    }
}
