#include <zucore/ZuPrivatable.h>

#include <new>

ZuPrivatable::ZuPrivatable(ZuPrivate *d)
    : d_ptr(d)
{ }

ZuPrivatable::~ZuPrivatable()
{
    // Released as a plain ZuPrivate, whatever was derived from it: only ZuPrivate's destructor
    // runs. The memory goes back without a size, since the derived object is usually larger than
    // a ZuPrivate, which a sized delete of the base would misstate.
    if (d_ptr) {
        d_ptr->~ZuPrivate();
        ::operator delete(static_cast<void *>(d_ptr));
    }
}
