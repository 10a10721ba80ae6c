#include "platform/memory.h"

#include <new>

#include <sys/mman.h>

namespace QmXmlLib10 {
namespace platform {

void* AllocateBlock(std::size_t size, std::size_t alignment) {
    // Heap memory rather than a private mapping, so that leak checkers still
    // see the pointers the block holds.
    void* block = ::operator new(size, std::align_val_t(alignment));
#ifdef MADV_HUGEPAGE
    if (size >= kHugePageSize && alignment >= kHugePageSize) (void)::madvise(block, size, MADV_HUGEPAGE);
#endif
    return block;
}

void FreeBlock(void* block, std::size_t, std::size_t alignment) noexcept {
    ::operator delete(block, std::align_val_t(alignment));
}

}  // namespace platform
}  // namespace QmXmlLib10
