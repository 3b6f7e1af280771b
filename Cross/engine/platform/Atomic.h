#pragma once

// Atomic counting on plain ints, for reference counts inside records that move as bytes. Both give the new
// value. Sequentially consistent; the only atomics in the engine beside its locks.

namespace Plat {

inline int AtomicIncrement(int volatile * value) { return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST); }

inline int AtomicDecrement(int volatile * value) { return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST); }

} // namespace Plat
