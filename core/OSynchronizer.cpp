// Locks over Windows critical sections.
#include "core/OSynchronizer.h"

OCriticalSection::OCriticalSection() : m_section(new CRITICAL_SECTION) {
    InitializeCriticalSection(m_section);
}

OCriticalSection::~OCriticalSection() {
    DeleteCriticalSection(m_section);
    delete m_section;
}

void OCriticalSection::Lock() {
    EnterCriticalSection(m_section);
}

void OCriticalSection::Unlock() {
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
