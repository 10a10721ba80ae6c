#include "qmxml/writer/string_buffer.h"

namespace QmXmlLib10 {

CStringBuffer::CStringBuffer() : CInstanceMonitor("CStringBuffer") {}

CStringBuffer::~CStringBuffer() = default;

void CStringBuffer::StartBlock() {
    if (m_current) m_blockLengths.push_back(m_used);
    // One extra zero so that every block is also a terminated string.
    m_blocks.push_back(std::make_unique<char[]>(BlockSize + 1));
    m_current = m_blocks.back().get();
    m_used = 0;
    m_capacity = BlockSize;
}

void CStringBuffer::AppendAcrossBlocks(const char* text, std::size_t length) {
    while (length > 0) {
        if (m_used == m_capacity) StartBlock();
        std::size_t part = m_capacity - m_used;
        if (part > length) part = length;
        std::memcpy(m_current + m_used, text, part);
        m_used += part;
        m_length += part;
        text += part;
        length -= part;
    }
}

std::size_t CStringBuffer::GetBlockLength(std::size_t index) const {
    return index < m_blockLengths.size() ? m_blockLengths[index] : m_used;
}

void CStringBuffer::AppendTo(std::string& out) const {
    out.reserve(out.size() + m_length);
    for (std::size_t i = 0; i < m_blocks.size(); ++i) out.append(m_blocks[i].get(), GetBlockLength(i));
}

std::string CStringBuffer::GetText() const {
    std::string text;
    AppendTo(text);
    return text;
}

void CStringBuffer::Reset() {
    if (m_blocks.empty()) return;
    std::memset(m_blocks[0].get(), 0, GetBlockLength(0));
    m_blocks.resize(1);
    m_blockLengths.clear();
    m_current = m_blocks[0].get();
    m_used = 0;
    m_capacity = BlockSize;
    m_length = 0;
}

}  // namespace QmXmlLib10
