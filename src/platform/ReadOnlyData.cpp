#include "platform/ReadOnlyData.h"

#include <QtGlobal>

#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
#include <link.h>
#define ZU_HAVE_PHDR 1
#endif

namespace ZuPlatform {

bool isReadOnlyData(const void *address)
{
#ifdef ZU_HAVE_PHDR
    struct Query
    {
        ElfW(Addr) address;
        bool readOnly;
    } query { ElfW(Addr)(address), false };
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *data) {
            auto *q = static_cast<Query *>(data);
            for (ElfW(Half) k = 0; k < info->dlpi_phnum; ++k) {
                const ElfW(Phdr) &segment = info->dlpi_phdr[k];
                const ElfW(Addr) start = info->dlpi_addr + segment.p_vaddr;
                if (segment.p_type == PT_LOAD && q->address >= start
                    && q->address < start + segment.p_memsz) {
                    q->readOnly = !(segment.p_flags & PF_W);
                    return 1;
                }
            }
            return 0;
        },
        &query);
    return query.readOnly;
#else
    Q_UNUSED(address)
    return false;
#endif
}

} // namespace ZuPlatform
