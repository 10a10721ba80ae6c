// Append-only character store behind the text streams.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "qmxml/core/instance_monitor.h"

namespace QmXmlLib10 {

// Text kept in fixed blocks of BlockSize characters, so that appending never
// moves what is already stored and stays constant time per character.
class CStringBuffer : public CInstanceMonitor {
public:
    static constexpr std::size_t BlockSize = 4095;

    CStringBuffer();
    ~CStringBuffer();
    CStringBuffer(const CStringBuffer&) = delete;
    CStringBuffer& operator=(const CStringBuffer&) = delete;

    void Append(char c) {
        if (m_used == m_capacity) StartBlock();
        m_current[m_used++] = c;
        ++m_length;
    }
    void Append(const char* text, std::size_t length) {
        if (length <= m_capacity - m_used) {
            if (length != 0) std::memcpy(m_current + m_used, text, length);
            m_used += length;
            m_length += length;
        } else {
            AppendAcrossBlocks(text, length);
        }
    }
    // Zero-terminated text; null appends nothing.
    void Append(const char* text) {
        if (text) Append(text, std::strlen(text));
    }
    void Append(const std::string& text) { Append(text.data(), text.size()); }

    // Characters stored since the last reset.
    std::size_t GetLength() const { return m_length; }
    // All stored characters; empty when nothing is stored.
    std::string GetText() const;
    void AppendTo(std::string& out) const;
    // Empties the buffer. The first block is kept (zero-filled) for reuse, so a
    // buffer that is filled and flushed repeatedly allocates little.
    void Reset();

    // The blocks holding the text, in order (for tests and encoders).
    std::size_t GetBlockCount() const { return m_blocks.size(); }
    const char* GetBlockData(std::size_t index) const { return m_blocks[index].get(); }
    std::size_t GetBlockLength(std::size_t index) const;

private:
    void StartBlock();
    void AppendAcrossBlocks(const char* text, std::size_t length);

    std::vector<std::unique_ptr<char[]>> m_blocks;
    // Used length of each block before the current one.
    std::vector<std::size_t> m_blockLengths;
    char* m_current = nullptr;
    std::size_t m_used = 0;
    std::size_t m_capacity = 0;
    std::size_t m_length = 0;
};

}  // namespace QmXmlLib10
