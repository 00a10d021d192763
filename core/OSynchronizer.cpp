// Locks over Windows critical sections.
#include "core/OSynchronizer.h"

#include "core/LockOrder.h"

OCriticalSection::OCriticalSection() : m_section(new CRITICAL_SECTION) {
    InitializeCriticalSection(m_section);
}

OCriticalSection::~OCriticalSection() {
    OCore::LockIsGone(m_section);
    DeleteCriticalSection(m_section);
    delete m_section;
}

void OCriticalSection::Lock() {
    OCore::LockIsTaken(m_section); // before a wait that may have no end
    EnterCriticalSection(m_section);
}

void OCriticalSection::Unlock() {
    OCore::LockIsGivenBack(m_section);
    LeaveCriticalSection(m_section);
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
