#include "zbBase/datafiles/CzbStringT.h"

#include "zbBase/platform/detail/zbpText.h"

#include <atomic>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>

namespace zbBase {

// Header of a shared character block; the characters and their NUL follow it.
struct CzbStringT::Block {
    std::atomic<int> refs;
    int length;

    char* chars() noexcept { return reinterpret_cast<char*>(this + 1); }

    static Block* make(int length) {
        void* memory = ::operator new(sizeof(Block) + static_cast<size_t>(length) + 1);
        Block* block = new (memory) Block;
        block->refs.store(1, std::memory_order_relaxed);
        block->length = length;
        block->chars()[length] = '\0';
        return block;
    }
};

CzbStringT::CzbStringT() noexcept : m_block(nullptr) {}

CzbStringT::CzbStringT(const char* text) : m_block(nullptr) {
    *this = text;
}

CzbStringT::CzbStringT(const CzbStringT& other) noexcept : m_block(other.m_block) {
    if (m_block != nullptr) {
        m_block->refs.fetch_add(1, std::memory_order_relaxed);
    }
}

CzbStringT::CzbStringT(CzbStringT&& other) noexcept : m_block(other.m_block) {
    other.m_block = nullptr;
}

CzbStringT::~CzbStringT() {
    release();
}

void CzbStringT::release() noexcept {
    if (m_block != nullptr && m_block->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        m_block->~Block();
        ::operator delete(m_block);
    }
    m_block = nullptr;
}

void CzbStringT::assign(const char* text, int length) {
    // The text may live in this object's own block: build the new one first.
    Block* block = nullptr;
    if (length > 0) {
        block = Block::make(length);
        std::memcpy(block->chars(), text, static_cast<size_t>(length));
    }
    release();
    m_block = block;
}

CzbStringT& CzbStringT::operator=(const char* text) {
    size_t length = text != nullptr ? std::strlen(text) : 0;
    if (length > static_cast<size_t>(INT_MAX)) {
        throw std::length_error("string too long");
    }
    assign(text, static_cast<int>(length));
    return *this;
}

CzbStringT& CzbStringT::operator=(const CzbStringT& other) noexcept {
    if (m_block != other.m_block) {
        CzbStringT copy(other);
        std::swap(m_block, copy.m_block);
    }
    return *this;
}

CzbStringT& CzbStringT::operator=(CzbStringT&& other) noexcept {
    if (this != &other) {
        release();
        m_block = other.m_block;
        other.m_block = nullptr;
    }
    return *this;
}

void CzbStringT::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    // A null format gives the empty text (the Visual C++ runtime would end the process).
    int length = format != nullptr ? std::vsnprintf(nullptr, 0, format, args) : 0;
    va_end(args);
    Block* block = nullptr;
    if (length > 0) {
        block = Block::make(length);
        std::vsnprintf(block->chars(), static_cast<size_t>(length) + 1, format, again);
    }
    va_end(again);
    release();
    m_block = block;
}

int CzbStringT::GetLength() const noexcept {
    return m_block != nullptr ? m_block->length : 0;
}

int CzbStringT::Compare(const char* text) const {
    return zbp::_mbscmp(GetString(), text != nullptr ? text : "");
}

bool CzbStringT::operator<(const CzbStringT& other) const {
    return zbp::_mbscmp(GetString(), other.GetString()) < 0;
}

const char* CzbStringT::GetString() const noexcept {
    return m_block != nullptr ? m_block->chars() : "";
}

char* CzbStringT::GetBuffer() {
    if (m_block == nullptr) {
        m_block = Block::make(0);
    } else if (m_block->refs.load(std::memory_order_acquire) != 1) {
        Block* own = Block::make(m_block->length);
        std::memcpy(own->chars(), m_block->chars(), static_cast<size_t>(m_block->length));
        release();
        m_block = own;
    }
    return m_block->chars();
}

} // namespace zbBase
