// The order in which locks are taken, watched in the debug build; the program that ships has nothing of it.
#pragma once

namespace OCore {

#ifdef KEMBA_LOCK_ORDER

/// The thread is about to take the lock. Ends the process with a word on standard error when the lock was
/// seen held while one was taken that the thread holds now, directly or through others: two threads would
/// wait for each other. Taking a lock again is no order.
void LockIsTaken(const void* lock) noexcept;
/// The thread gives the lock back, as often as it took it.
void LockIsGivenBack(const void* lock) noexcept;
/// The lock goes; one that is made in its place has no order yet.
void LockIsGone(const void* lock) noexcept;

#else

inline void LockIsTaken(const void*) noexcept {}
inline void LockIsGivenBack(const void*) noexcept {}
inline void LockIsGone(const void*) noexcept {}

#endif

} // namespace OCore
