#include "Platform/ProgramCode.h"

#include <QtGlobal>

#include <algorithm>
#include <span>

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace pavonel {

namespace {

using Segments = std::span<const ElfW(Phdr)>;

/// Whether the loader wrote into its code, which then is not what the file has.
bool isRelocated(const dl_phdr_info &library, Segments segments) {
    const auto dynamic = std::ranges::find(segments, ElfW(Word){PT_DYNAMIC}, &ElfW(Phdr)::p_type);
    if (dynamic == segments.end())
        return true; // nothing is known of it
    const auto *entry = reinterpret_cast<const ElfW(Dyn) *>(library.dlpi_addr + dynamic->p_vaddr);
    for (; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_TEXTREL || (entry->d_tag == DT_FLAGS && (entry->d_un.d_val & DF_TEXTREL)))
            return true;
    }
    return false;
}

int returnCodeOf(dl_phdr_info *library, std::size_t, void *) {
    const Segments segments(library->dlpi_phdr, library->dlpi_phnum);
    if (isRelocated(*library, segments))
        return 0;
    const auto page = static_cast<ElfW(Addr)>(::sysconf(_SC_PAGESIZE));
    for (const ElfW(Phdr) & segment : segments) {
        if (segment.p_type != PT_LOAD || (segment.p_flags & (PF_X | PF_W)) != PF_X)
            continue;
        const ElfW(Addr) begin = (library->dlpi_addr + segment.p_vaddr) / page * page;
        const ElfW(Addr) end = library->dlpi_addr + segment.p_vaddr + segment.p_memsz;
        ::madvise(reinterpret_cast<void *>(begin), end - begin, MADV_DONTNEED);
    }
    return 0;
}

} // namespace

void returnCode() {
    ::dl_iterate_phdr(&returnCodeOf, nullptr);
}

} // namespace pavonel
