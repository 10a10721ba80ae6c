// Large memory blocks for the document's node pool. Internal to the library.
#pragma once

#include <cstddef>

namespace QmXmlLib10 {
namespace platform {

// Size and alignment at which the kernel can back a block with one huge page.
constexpr std::size_t kHugePageSize = std::size_t{2} << 20;

// A block of size bytes aligned to alignment (a power of two). A block that
// covers whole huge pages is marked for transparent huge pages: filling a big
// tree then takes one page fault per 2 MiB instead of one per 4 KiB. Only a
// hint; throws std::bad_alloc when no memory is left.
void* AllocateBlock(std::size_t size, std::size_t alignment);
// Frees a block from AllocateBlock with the same size and alignment.
void FreeBlock(void* block, std::size_t size, std::size_t alignment) noexcept;

}  // namespace platform
}  // namespace QmXmlLib10
