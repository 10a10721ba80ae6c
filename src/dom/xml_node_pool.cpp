#include "dom/xml_node_pool.h"

#include <mutex>
#include <type_traits>

#include "platform/memory.h"

namespace QmXmlLib10 {

namespace {

constexpr std::size_t kCacheSlots = 1024;  // 2 GiB of huge chunks at most

// Trivially destructible, so that a document destroyed during static
// destruction can still use it; what it holds at exit stays reachable.
struct ChunkCache {
    std::mutex mutex;
    std::size_t limit = std::size_t{128} << 20;
    std::size_t count = 0;
    void* chunks[kCacheSlots] = {};
};
static_assert(std::is_trivially_destructible_v<ChunkCache>, "the cache must outlive every document");
ChunkCache g_cache;

std::size_t SlotsFor(std::size_t bytes) noexcept {
    const std::size_t slots = bytes / platform::kHugePageSize;
    return slots < kCacheSlots ? slots : kCacheSlots;
}

void* TakeCachedChunk() noexcept {
    std::lock_guard<std::mutex> lock(g_cache.mutex);
    return g_cache.count > 0 ? g_cache.chunks[--g_cache.count] : nullptr;
}

// False when the cache is full: the caller frees the chunk.
bool KeepChunk(void* chunk) noexcept {
    std::lock_guard<std::mutex> lock(g_cache.mutex);
    if (g_cache.count >= SlotsFor(g_cache.limit)) return false;
    g_cache.chunks[g_cache.count++] = chunk;
    return true;
}

}  // namespace

void CXmlNodePool::SetCacheLimit(std::size_t bytes) noexcept {
    void* surplus[kCacheSlots];
    std::size_t n = 0;
    {
        std::lock_guard<std::mutex> lock(g_cache.mutex);
        g_cache.limit = bytes;
        while (g_cache.count > SlotsFor(bytes)) surplus[n++] = g_cache.chunks[--g_cache.count];
    }
    for (std::size_t i = 0; i < n; ++i) {
        Unpoison(surplus[i], platform::kHugePageSize);
        platform::FreeBlock(surplus[i], platform::kHugePageSize, platform::kHugePageSize);
    }
}

std::size_t CXmlNodePool::GetCacheLimit() noexcept {
    std::lock_guard<std::mutex> lock(g_cache.mutex);
    return g_cache.limit;
}

std::size_t CXmlNodePool::GetCachedBytes() noexcept {
    std::lock_guard<std::mutex> lock(g_cache.mutex);
    return g_cache.count * platform::kHugePageSize;
}

CXmlNodePool::~CXmlNodePool() { FreeChunks(); }

void CXmlNodePool::AddChunk() {
    const std::size_t size = m_nextChunkSize;
    // Whole huge pages must also start on a huge-page boundary to be backed by one.
    const std::size_t alignment = size >= platform::kHugePageSize ? platform::kHugePageSize : alignof(Chunk);
    void* cached = size == platform::kHugePageSize ? TakeCachedChunk() : nullptr;
    if (cached != nullptr) Unpoison(cached, sizeof(Chunk));
    Chunk* chunk = static_cast<Chunk*>(cached != nullptr ? cached : platform::AllocateBlock(size, alignment));
    chunk->previous = m_chunks;
    chunk->size = size;
    chunk->alignment = alignment;
    m_chunks = chunk;
    m_reserved += size;
    ++m_chunkCount;
    // The unused tail of the previous chunk (smaller than one block) is given up.
    m_cursor = reinterpret_cast<char*>(chunk) + Round(sizeof(Chunk));
    m_end = reinterpret_cast<char*>(chunk) + size;
    PoisonRange(m_cursor, static_cast<std::size_t>(m_end - m_cursor));
    if (m_nextChunkSize < platform::kHugePageSize) m_nextChunkSize *= 2;
}

void CXmlNodePool::FreeChunks() noexcept {
    while (m_chunks != nullptr) {
        Chunk* chunk = m_chunks;
        m_chunks = chunk->previous;
        const std::size_t size = chunk->size;
        const std::size_t alignment = chunk->alignment;
        if (size == platform::kHugePageSize && alignment == platform::kHugePageSize) {
            // Kept poisoned: a node of the freed document stays unusable.
            PoisonRange(chunk, size);
            if (KeepChunk(chunk)) continue;
        }
        Unpoison(chunk, size);
        platform::FreeBlock(chunk, size, alignment);
    }
    m_cursor = nullptr;
    m_end = nullptr;
    for (FreeBlock*& head : m_free) head = nullptr;
    m_nextChunkSize = kFirstChunk;
    m_reserved = 0;
    m_chunkCount = 0;
}

void CXmlNodePool::Reset() noexcept {
    if (m_live == 0) FreeChunks();
}

}  // namespace QmXmlLib10
