// The slots of CzbText: taking one, giving it a block, and what copies and threads share.
//
// One allocation holds what the objects sharing a ring (a ring and its copies) have in
// common: a head with the holder count, then per slot the text pointer (m_buffers), the
// capacity (m_bufferSizes), a claim flag and the list of blocks set aside. A slot's pointer
// and capacity are read and written atomically, so getBuffer from any thread is no data race;
// everything else of a slot is touched only by the caller that holds its claim.
//
// Every block carries a small header in front of its text: the object whose text it holds,
// its capacity, the list link while it is set aside, and the chain of blocks it replaced when
// its slot grew. A replaced block may still be in the hands of a lapped writer or of a reader
// that holds an old result, so it is kept on that chain and freed with the block that
// replaced it.
#include "zbBase/diagnostics/CzbText.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <thread>

namespace {

struct Block {
    Block* outgrown;      // blocks this one replaced, newest first
    Block* nextAside;     // next in the slot's list of blocks set aside
    const CzbText* owner; // the object whose text it holds; null once that object is gone
    int capacity;         // bytes of text
};
constexpr size_t kBlockHead = 32; // keeps the text 16-byte aligned
static_assert(sizeof(Block) <= kBlockHead, "block header must fit before the text");

char* textOf(Block* block) {
    return reinterpret_cast<char*>(block) + kBlockHead;
}

Block* blockOf(char* text) {
    return reinterpret_cast<Block*>(text - kBlockHead);
}

Block* newBlock(int capacity, const CzbText* owner, Block* outgrown) {
    void* raw = ::operator new(kBlockHead + static_cast<size_t>(capacity));
    return new (raw) Block{outgrown, nullptr, owner, capacity};
}

// Frees the block and every block it replaced.
void freeChain(Block* block) {
    while (block != nullptr) {
        Block* next = block->outgrown;
        block->~Block();
        ::operator delete(static_cast<void*>(block));
        block = next;
    }
}

// Slot pointers and capacities are plain arrays of the public interface; every access of the
// library to them is atomic.
template <class T> T loadShared(T* at) {
#if defined(__GNUC__) || defined(__clang__)
    return __atomic_load_n(at, __ATOMIC_ACQUIRE);
#else
    return reinterpret_cast<std::atomic<T>*>(at)->load(std::memory_order_acquire);
#endif
}

template <class T> void storeShared(T* at, T value) {
#if defined(__GNUC__) || defined(__clang__)
    __atomic_store_n(at, value, __ATOMIC_RELEASE);
#else
    reinterpret_cast<std::atomic<T>*>(at)->store(value, std::memory_order_release);
#endif
}

static_assert(std::atomic<char*>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "slot pointers and capacities must be lock-free");

struct RingHead {
    std::atomic<int> holders;
    int count;
};
constexpr size_t kRingHead = 16;
static_assert(sizeof(RingHead) <= kRingHead, "ring head must fit before the slots");

// The parts of one shared ring allocation.
struct Ring {
    RingHead* head;
    char** texts;
    int* sizes;
    std::atomic<int>* claims;
    Block** aside;

    static size_t textsAt() { return kRingHead; }
    static size_t sizesAt(size_t count) { return textsAt() + sizeof(char*) * count; }
    static size_t claimsAt(size_t count) { return sizesAt(count) + sizeof(int) * count; }
    static size_t asideAt(size_t count) {
        const size_t end = claimsAt(count) + sizeof(std::atomic<int>) * count;
        return (end + alignof(Block*) - 1) / alignof(Block*) * alignof(Block*);
    }
    static size_t bytes(size_t count) { return asideAt(count) + sizeof(Block*) * count; }

    explicit Ring(char** slots) {
        char* raw = reinterpret_cast<char*>(slots) - textsAt();
        head = reinterpret_cast<RingHead*>(raw);
        const size_t count = static_cast<size_t>(head->count);
        texts = slots;
        sizes = reinterpret_cast<int*>(raw + sizesAt(count));
        claims = reinterpret_cast<std::atomic<int>*>(raw + claimsAt(count));
        aside = reinterpret_cast<Block**>(raw + asideAt(count));
    }

    // A ring of count empty slots held by one object; its m_buffers.
    static char** create(int count) {
        const size_t n = static_cast<size_t>(count);
        char* raw = static_cast<char*>(::operator new(bytes(n)));
        new (raw) RingHead{{1}, count};
        Ring ring(reinterpret_cast<char**>(raw + textsAt()));
        for (size_t i = 0; i < n; ++i) {
            ring.texts[i] = nullptr;
            ring.sizes[i] = 0;
            new (&ring.claims[i]) std::atomic<int>(0);
            ring.aside[i] = nullptr;
        }
        return ring.texts;
    }

    void claim(int slot) {
        while (claims[slot].exchange(1, std::memory_order_acquire) != 0) {
            std::this_thread::yield();
        }
    }
    void unclaim(int slot) { claims[slot].store(0, std::memory_order_release); }

    Block* current(int slot) {
        char* text = loadShared(&texts[slot]);
        return text != nullptr ? blockOf(text) : nullptr;
    }
    void install(int slot, Block* block) {
        storeShared(&sizes[slot], block->capacity);
        storeShared(&texts[slot], textOf(block));
    }

    // Frees every block of every slot, then the ring itself.
    void destroy() {
        const int count = head->count;
        for (int i = 0; i < count; ++i) {
            freeChain(current(i));
            while (Block* block = aside[i]) {
                aside[i] = block->nextAside;
                freeChain(block);
            }
            claims[i].~atomic();
        }
        head->~RingHead();
        ::operator delete(static_cast<void*>(head));
    }
};

// Moves the cursor on by one slot and gives that slot. A cursor that a host set outside the
// ring (the largest int included) still gives a slot of it.
int advance(std::atomic<int>& cursor, int count) {
    int current = cursor.load();
    int slot;
    do {
        slot = static_cast<int>((static_cast<long long>(current) + 1) % count);
        if (slot < 0) {
            slot += count;
        }
    } while (!cursor.compare_exchange_weak(current, slot));
    return slot;
}

} // namespace

CzbText::CzbText()
    : m_buffers(Ring::create(8)), m_bufferSizes(Ring(m_buffers).sizes), m_bufferNum(8),
      m_current(-1) {}

CzbText::CzbText(const CzbText& other)
    : m_buffers(other.m_buffers), m_bufferSizes(other.m_bufferSizes),
      m_bufferNum(other.m_bufferNum), m_current(other.m_current.load()) {
    Ring(m_buffers).head->holders.fetch_add(1);
}

CzbText::~CzbText() {
    release();
}

CzbText& CzbText::operator=(const CzbText& other) {
    if (this == &other) {
        return *this;
    }
    Ring(other.m_buffers).head->holders.fetch_add(1);
    release();
    m_buffers = other.m_buffers;
    m_bufferSizes = other.m_bufferSizes;
    m_bufferNum = other.m_bufferNum;
    m_current.store(other.m_current.load());
    return *this;
}

// Gives up this object's hold on its slots. Every object holds slots from its construction on:
// release() is followed by a new hold or by the end of the object.
void CzbText::release() {
    Ring ring(m_buffers);
    if (ring.head->holders.load(std::memory_order_acquire) != 1) {
        // Others go on with the slots: this object's texts that stand in them become anyone's,
        // and its blocks set aside are no one's any more.
        for (int slot = 0; slot < m_bufferNum; ++slot) {
            ring.claim(slot);
            Block* block = ring.current(slot);
            if (block != nullptr && block->owner == this) {
                block->owner = nullptr;
            }
            for (Block** link = &ring.aside[slot]; *link != nullptr;) {
                Block* aside = *link;
                if (aside->owner == this) {
                    *link = aside->nextAside;
                    freeChain(aside);
                } else {
                    link = &aside->nextAside;
                }
            }
            ring.unclaim(slot);
        }
    }
    if (ring.head->holders.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        ring.destroy();
    }
    m_buffers = nullptr;
    m_bufferSizes = nullptr;
}

char* CzbText::getBuffer(int index) {
    return loadShared(&m_buffers[index]);
}

int CzbText::getBufferNum() {
    return m_bufferNum;
}

int CzbText::getBufferSize(int index) {
    return loadShared(&m_bufferSizes[index]);
}

int CzbText::claimSlot(int size) {
    const int before = m_current.load();
    const int slot = advance(m_current, m_bufferNum);
    Ring ring(m_buffers);
    ring.claim(slot);
    try {
        Block* block = ring.current(slot);
        const int capacity = block != nullptr ? block->capacity : 0;
        if (block != nullptr && (block->owner == this || block->owner == nullptr)) {
            if (capacity < size) {
                ring.install(slot, newBlock(size, this, block));
            } else {
                block->owner = this;
            }
        } else {
            // The slot is empty or shows another object's text: that block is set aside, and
            // this object's own block for the slot comes back (grown if the slot has grown),
            // so a capacity never goes down.
            const int wanted = std::max(size, capacity);
            Block** link = &ring.aside[slot];
            while (*link != nullptr && (*link)->owner != this) {
                link = &(*link)->nextAside;
            }
            Block* own = *link;
            Block* chosen = own;
            if (own == nullptr || own->capacity < wanted) {
                chosen = newBlock(wanted, this, own);
            }
            if (own != nullptr) {
                *link = own->nextAside;
                own->nextAside = nullptr;
            }
            if (block != nullptr) {
                block->nextAside = ring.aside[slot];
                ring.aside[slot] = block;
            }
            ring.install(slot, chosen);
        }
    } catch (...) {
        // Nothing has changed but the cursor: give the slot back unless another caller has
        // moved on from it meanwhile.
        ring.unclaim(slot);
        int claimed = slot;
        m_current.compare_exchange_strong(claimed, before);
        throw;
    }
    return slot;
}

void CzbText::finishSlot(int slot) {
    Ring(m_buffers).unclaim(slot);
}

char* CzbText::getBufferNew(int size) {
    if (size <= 0) {
        // Nothing to allocate or write: the cursor moves and the slot's block, if any, comes
        // back as it is.
        return getBuffer(advance(m_current, m_bufferNum));
    }
    const int slot = claimSlot(size);
    char* block = getBuffer(slot);
    finishSlot(slot);
    return block;
}

void CzbText::setBufferSize(int count) {
    if (count < 1 || count == m_bufferNum) {
        return;
    }
    char** fresh = Ring::create(count);
    release();
    m_buffers = fresh;
    m_bufferSizes = Ring(fresh).sizes;
    m_bufferNum = count;
}
