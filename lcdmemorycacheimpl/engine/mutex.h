// Mutexes that the compiler can follow. The library's own carry no capability attributes.
#pragma once

#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define LCD_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define LCD_THREAD_ATTRIBUTE(x)
#endif

/// A member that is read and written under that mutex only.
#define LCD_GUARDED_BY(mutex) LCD_THREAD_ATTRIBUTE(guarded_by(mutex))
/// A function that is called with that mutex held.
#define LCD_REQUIRES(...) LCD_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
/// A function that takes that mutex and so must not be called with it held.
#define LCD_EXCLUDES(...) LCD_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))

namespace LCD::MemoryCacheImpl {

template <class Native>
class LCD_THREAD_ATTRIBUTE(capability("mutex")) BasicMutex {
public:
    void lock() LCD_THREAD_ATTRIBUTE(acquire_capability()) { native_.lock(); }
    void unlock() LCD_THREAD_ATTRIBUTE(release_capability()) { native_.unlock(); }

private:
    friend class ConditionVariable;
    Native native_;
};

using Mutex = BasicMutex<std::mutex>;
using RecursiveMutex = BasicMutex<std::recursive_mutex>;

/// Holds a mutex for a scope.
template <class M>
class LCD_THREAD_ATTRIBUTE(scoped_lockable) LockGuard {
public:
    explicit LockGuard(M& mutex) LCD_THREAD_ATTRIBUTE(acquire_capability(mutex)) : mutex_(mutex) { mutex_.lock(); }
    ~LockGuard() LCD_THREAD_ATTRIBUTE(release_capability()) { mutex_.unlock(); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    M& mutex_;
};

class ConditionVariable {
public:
    /// Waits once; the caller tests its condition around it.
    void wait(Mutex& mutex) LCD_REQUIRES(mutex) {
        std::unique_lock<std::mutex> lock(mutex.native_, std::adopt_lock);
        native_.wait(lock);
        lock.release();
    }
    void notifyAll() { native_.notify_all(); }

private:
    std::condition_variable native_;
};

}  // namespace LCD::MemoryCacheImpl
