// Per-document storage for tree nodes. Internal to the library.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define QMXML_POOL_POISONING 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QMXML_POOL_POISONING 1
#endif
#endif
#ifdef QMXML_POOL_POISONING
#include <sanitizer/asan_interface.h>
#endif

namespace QmXmlLib10 {

// Hands out the fixed-size blocks that elements, attributes, attribute
// vectors and element texts live in. A loaded document has millions of nodes; one malloc each
// costs more than parsing them, and the allocator's per-block header adds to
// the footprint. Blocks are cut from chunks that grow from 4 KiB to 2 MiB
// (then stay there, on huge pages where available), and released blocks go to
// a free list per size, so a loader whose element filter drops each finished
// subtree keeps reusing the same few blocks.
//
// Full-size chunks of a freed pool are kept, up to a process-wide limit, for
// the next document: faulting in fresh pages (the kernel zeroes each one) costs
// a tenth of a load, and a program that loads one document usually loads more.
//
// The pool only provides memory: callers construct and destroy the objects in
// it. It is used by one thread at a time, like its document; the chunk cache
// is shared and locked.
class CXmlNodePool {
public:
    // Largest block size served.
    static constexpr std::size_t kMaxBlock = 128;

    CXmlNodePool() noexcept = default;
    // Frees every chunk; the objects in them must have been destroyed.
    ~CXmlNodePool();
    CXmlNodePool(const CXmlNodePool&) = delete;
    CXmlNodePool& operator=(const CXmlNodePool&) = delete;

    // Node blocks count in GetLiveCount; blocks that belong to a node (its
    // text) do not, so the count stays the number of nodes.
    enum Counting { Counted, Uncounted };

    // A block of at least size bytes (1 to kMaxBlock), aligned for any node.
    void* Allocate(std::size_t size, Counting counting = Counted) {
        const std::size_t rounded = Round(size);
        FreeBlock*& head = m_free[rounded / kGrain];
        void* block;
        if (head != nullptr) {
            Unpoison(head, rounded);
            block = head;
            head = head->next;
        } else {
            if (static_cast<std::size_t>(m_end - m_cursor) < rounded) AddChunk();
            block = m_cursor;
            m_cursor += rounded;
            Unpoison(block, rounded);
        }
        if (counting == Counted) ++m_live;
        return block;
    }

    // Returns a block from Allocate with the same size, for reuse.
    void Release(void* block, std::size_t size, Counting counting = Counted) noexcept {
        const std::size_t rounded = Round(size);
        FreeBlock* freed = static_cast<FreeBlock*>(block);
        freed->next = m_free[rounded / kGrain];
        m_free[rounded / kGrain] = freed;
        if (counting == Counted) --m_live;
        Poison(block, rounded);
    }

    // Frees every chunk when no counted block is in use (uncounted ones belong
    // to counted ones); otherwise does nothing.
    void Reset() noexcept;

    // Counted blocks handed out and not released.
    std::size_t GetLiveCount() const noexcept { return m_live; }
    // Bytes held in chunks, used or not.
    std::size_t GetReservedBytes() const noexcept { return m_reserved; }
    std::size_t GetChunkCount() const noexcept { return m_chunkCount; }

    // Bytes of freed chunks kept for reuse at most (rounded down to whole
    // chunks); lowering it frees the surplus at once. 0 keeps none.
    static void SetCacheLimit(std::size_t bytes) noexcept;
    static std::size_t GetCacheLimit() noexcept;
    // Bytes currently kept.
    static std::size_t GetCachedBytes() noexcept;

private:
    // Every node type holds pointers, so 8-byte alignment serves them all.
    static constexpr std::size_t kGrain = 8;
    static constexpr std::size_t kFirstChunk = 4096;

    struct FreeBlock {
        FreeBlock* next;
    };
    // Starts every chunk; the blocks follow it.
    struct Chunk {
        Chunk* previous;
        std::size_t size;
        std::size_t alignment;
    };

    static constexpr std::size_t Round(std::size_t size) noexcept {
        return size < sizeof(FreeBlock) ? sizeof(FreeBlock) : (size + kGrain - 1) & ~(kGrain - 1);
    }
    // Released memory is poisoned under AddressSanitizer, so a node used after
    // its destruction is still reported even though it never reaches free().
    // The free-list link stays readable.
    static void Poison(void* block, std::size_t size) noexcept {
        PoisonRange(static_cast<char*>(block) + sizeof(FreeBlock), size - sizeof(FreeBlock));
    }
    static void PoisonRange(void* start, std::size_t size) noexcept {
#ifdef QMXML_POOL_POISONING
        ASAN_POISON_MEMORY_REGION(start, size);
#else
        (void)start;
        (void)size;
#endif
    }
    static void Unpoison(void* block, std::size_t size) noexcept {
#ifdef QMXML_POOL_POISONING
        ASAN_UNPOISON_MEMORY_REGION(block, size);
#else
        (void)block;
        (void)size;
#endif
    }

    void AddChunk();
    void FreeChunks() noexcept;

    char* m_cursor = nullptr;
    char* m_end = nullptr;
    FreeBlock* m_free[kMaxBlock / kGrain + 1] = {};
    Chunk* m_chunks = nullptr;
    std::size_t m_nextChunkSize = kFirstChunk;
    std::size_t m_live = 0;
    std::size_t m_reserved = 0;
    std::size_t m_chunkCount = 0;
};

}  // namespace QmXmlLib10
