#include "dom/xml_node_pool.h"

#include "platform/memory.h"

namespace QmXmlLib10 {

CXmlNodePool::~CXmlNodePool() { FreeChunks(); }

void CXmlNodePool::AddChunk() {
    const std::size_t size = m_nextChunkSize;
    // Whole huge pages must also start on a huge-page boundary to be backed by one.
    const std::size_t alignment = size >= platform::kHugePageSize ? platform::kHugePageSize : alignof(Chunk);
    Chunk* chunk = static_cast<Chunk*>(platform::AllocateBlock(size, alignment));
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
        Unpoison(chunk, chunk->size);
        platform::FreeBlock(chunk, chunk->size, chunk->alignment);
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
