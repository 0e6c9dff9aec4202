#pragma once

// Not API: the lock guards used inside the logger.
//
// Qt's own library is not built with ThreadSanitizer, so the hand-over of a contended QMutex or
// QReadWriteLock happens out of its sight and every record written from two threads would be
// reported as a race. These guards take the same Qt locks and, in a ThreadSanitizer build, tell
// it about the acquire and release, so that its reports concern the logger's own data.

#include <QMutex>
#include <QReadWriteLock>

#if defined(__SANITIZE_THREAD__)
#define ZU_LOGGER_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZU_LOGGER_TSAN 1
#endif
#endif

#ifdef ZU_LOGGER_TSAN
extern "C" void __tsan_acquire(void *addr);
extern "C" void __tsan_release(void *addr);
#endif

namespace ZuLoggerLocks {

inline void acquired(const void *lock)
{
#ifdef ZU_LOGGER_TSAN
    __tsan_acquire(const_cast<void *>(lock));
#else
    Q_UNUSED(lock)
#endif
}

inline void releasing(const void *lock)
{
#ifdef ZU_LOGGER_TSAN
    __tsan_release(const_cast<void *>(lock));
#else
    Q_UNUSED(lock)
#endif
}

// Takes the logger's plain (non-recursive) QMutexes through QBasicMutex, whose uncontended lock
// and unlock are inline atomics, where QMutex's own are calls into Qt on every record.
class MutexLocker
{
    Q_DISABLE_COPY(MutexLocker)
public:
    explicit MutexLocker(QMutex *mutex)
        : m_mutex(mutex)
    {
        m_mutex->lock();
        acquired(m_mutex);
    }
    ~MutexLocker()
    {
        releasing(m_mutex);
        m_mutex->unlock();
    }

private:
    QBasicMutex *m_mutex;
};

class ReadLocker
{
    Q_DISABLE_COPY(ReadLocker)
public:
    explicit ReadLocker(QReadWriteLock *lock)
        : m_lock(lock)
    {
        m_lock->lockForRead();
        acquired(m_lock);
    }
    ~ReadLocker()
    {
        releasing(m_lock);
        m_lock->unlock();
    }

private:
    QReadWriteLock *m_lock;
};

class WriteLocker
{
    Q_DISABLE_COPY(WriteLocker)
public:
    explicit WriteLocker(QReadWriteLock *lock)
        : m_lock(lock)
    {
        m_lock->lockForWrite();
        acquired(m_lock);
    }
    ~WriteLocker()
    {
        releasing(m_lock);
        m_lock->unlock();
    }

private:
    QReadWriteLock *m_lock;
};

} // namespace ZuLoggerLocks
