#include "GuardedBuffer.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

namespace {
constexpr char kInFront = '\x5A';

std::size_t PageBytes()
{
    SYSTEM_INFO info = {};
    GetSystemInfo(&info);
    return info.dwPageSize;
}
} // namespace

GuardedBuffer::GuardedBuffer(std::size_t size)
    : m_pages(nullptr),
      m_pageBytes(PageBytes()),
      m_dataBytes((size / m_pageBytes + 1) * m_pageBytes),
      m_size(size),
      m_begin(nullptr)
{
    // An unallocated page on either side: the memory is only reserved.
    m_pages = static_cast<char*>(VirtualAlloc(nullptr, m_dataBytes + 2 * m_pageBytes, MEM_RESERVE, PAGE_NOACCESS));
    if (m_pages == nullptr || VirtualAlloc(m_pages + m_pageBytes, m_dataBytes, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
        throw std::runtime_error("no memory for a guarded buffer");
    }
    std::fill_n(m_pages + m_pageBytes, m_dataBytes, kInFront);
    m_begin = m_pages + m_pageBytes + m_dataBytes - m_size;
    Fill('#');
}

GuardedBuffer::~GuardedBuffer()
{
    VirtualFree(m_pages, 0, MEM_RELEASE);
}

std::string GuardedBuffer::Text() const
{
    const char* const end = std::find(m_begin, m_begin + m_size, '\0');
    if (end == m_begin + m_size) {
        throw std::runtime_error("the buffer holds no terminator");
    }
    return std::string(static_cast<const char*>(m_begin), end);
}

void GuardedBuffer::Fill(char value) const
{
    std::fill_n(m_begin, m_size, value);
}

bool GuardedBuffer::IsUntouchedInFront() const
{
    return std::all_of(m_pages + m_pageBytes, m_begin, [](char byte) { return byte == kInFront; });
}
