#pragma once

#include <zucore/zucore_export.h>

#include <QtGlobal>

/**
 * @brief The root type of an application's private data.
 *
 * It has no members and no virtual destructor: ZuPrivatable deletes it as a plain ZuPrivate, so a
 * type derived from it must not need a destructor of its own (hold plain values, not owners).
 */
struct ZUCORE_EXPORT ZuPrivate
{
};

/**
 * @brief A base class that owns one ZuPrivate from construction on.
 *
 * @code #include <zucore/ZuPrivatable.h> @endcode
 *
 * There is no accessor: the deriving class keeps its own typed view of the pointer. The
 * destructor deletes the pointer as a plain ZuPrivate (see ZuPrivate); a null pointer is fine.
 * Not copyable, since two copies would delete the same data.
 */
class ZUCORE_EXPORT ZuPrivatable
{
public:
    /// Takes ownership of @p d, which may be null.
    explicit ZuPrivatable(ZuPrivate *d);
    /// Deletes the private data as a plain ZuPrivate.
    ~ZuPrivatable();

private:
    Q_DISABLE_COPY(ZuPrivatable)
    ZuPrivate *d_ptr;
};
