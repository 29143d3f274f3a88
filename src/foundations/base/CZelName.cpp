#include "foundations/base/CZelName.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <new>

#include "foundations/base/ZelHash.h"
#include "foundations/base/ZelMalloc.h"

// A hash table with open addressing. Readers probe the newest set of slots without a lock; a slot only ever
// goes from empty to filled. When half is filled, a set of twice the size takes over, and the old one stays
// for those who are still reading it: together they are as large as the newest.
class CZelNameTable {
public:
    const CZelAtom *Find(std::string_view name, std::uint64_t hash) const;
    const CZelAtom *Enter(std::string_view name, std::uint64_t hash);
    std::size_t Count() const { return m_count.load(std::memory_order_relaxed); }

private:
    using Entry = CZelName::Entry;
    struct Slots {
        std::size_t m_mask;
        Slots *m_former;

        // m_mask + 1 of them stand behind this head.
        std::atomic<Entry *> &At(std::uint64_t position) {
            return reinterpret_cast<std::atomic<Entry *> *>(this + 1)[position & m_mask];
        }
        Entry *Find(std::string_view name, std::uint64_t hash);
        void Put(Entry *entry);
    };

    static constexpr std::size_t FIRST_SLOTS = 1024;
    static constexpr std::size_t ARENA = 65536;

    void growWhenHalfFull();
    static Slots *makeSlots(std::size_t count, Slots *former);
    Entry *makeEntry(std::string_view name, std::uint64_t hash);
    char *cut(std::size_t size);

    std::atomic<Slots *> m_slots{nullptr};
    std::atomic<std::size_t> m_count{0};
    std::mutex m_lock;  // guards what follows, and every change
    char *m_arena = nullptr;
    std::size_t m_arenaLeft = 0;
};

namespace {

// Never destroyed: names are compared as late as in the destructors of statics.
constinit CZelNameTable g_names;

}  // namespace

CZelNameTable::Entry *CZelNameTable::Slots::Find(std::string_view name, std::uint64_t hash) {
    for (std::uint64_t position = hash;; ++position) {
        Entry *entry = At(position).load(std::memory_order_acquire);
        if (entry == nullptr || (entry->m_hash == hash && entry->m_name.RATextView() == name))
            return entry;
    }
}

void CZelNameTable::Slots::Put(Entry *entry) {
    std::uint64_t position = entry->m_hash;
    while (At(position).load(std::memory_order_relaxed) != nullptr)
        ++position;
    At(position).store(entry, std::memory_order_release);
}

const CZelAtom *CZelNameTable::Find(std::string_view name, std::uint64_t hash) const {
    Slots *slots = m_slots.load(std::memory_order_acquire);
    Entry *entry = slots == nullptr ? nullptr : slots->Find(name, hash);
    return entry == nullptr ? nullptr : &entry->m_name;
}

const CZelAtom *CZelNameTable::Enter(std::string_view name, std::uint64_t hash) {
    std::lock_guard guard(m_lock);
    if (const CZelAtom *known = Find(name, hash))
        return known;
    if (Count() == CZelName::MAX_NAMES)
        return nullptr;
    growWhenHalfFull();
    Entry *entry = makeEntry(name, hash);
    m_slots.load(std::memory_order_relaxed)->Put(entry);
    m_count.store(Count() + 1, std::memory_order_relaxed);
    return &entry->m_name;
}

void CZelNameTable::growWhenHalfFull() {
    Slots *old = m_slots.load(std::memory_order_relaxed);
    std::size_t size = old == nullptr ? 0 : old->m_mask + 1;
    if (2 * Count() < size)
        return;
    Slots *grown = makeSlots(size == 0 ? FIRST_SLOTS : 2 * size, old);
    for (std::size_t i = 0; i < size; ++i) {
        if (Entry *entry = old->At(i).load(std::memory_order_relaxed))
            grown->Put(entry);
    }
    m_slots.store(grown, std::memory_order_release);
}

CZelNameTable::Slots *CZelNameTable::makeSlots(std::size_t count, Slots *former) {
    std::size_t size = sizeof(Slots) + count * sizeof(std::atomic<Entry *>);
    Slots *slots = static_cast<Slots *>(std::memset(ZelMalloc(size), 0, size));
    slots->m_mask = count - 1;
    slots->m_former = former;
    return slots;
}

CZelNameTable::Entry *CZelNameTable::makeEntry(std::string_view name, std::uint64_t hash) {
    char *memory = cut(sizeof(Entry) + name.size() + 1);
    char *text = memory + sizeof(Entry);
    std::memcpy(text, name.data(), name.size());
    text[name.size()] = '\0';
    return new (memory) Entry{hash, nullptr, CZelName::atomOver(text, name.size())};
}

char *CZelNameTable::cut(std::size_t size) {
    size = (size + alignof(std::max_align_t) - 1) & ~(alignof(std::max_align_t) - 1);
    if (m_arenaLeft < size) {
        m_arena = static_cast<char *>(ZelMalloc(ARENA));
        m_arenaLeft = ARENA;
    }
    char *memory = m_arena;
    m_arena += size;
    m_arenaLeft -= size;
    return memory;
}

const CZelAtom *CZelName::RNIntern(const char *text, std::size_t length) {
    if (length > MAX_LENGTH)
        return nullptr;
    std::string_view name(text, length);
    std::uint64_t hash = ZelHashText(text, length);
    const CZelAtom *known = g_names.Find(name, hash);
    return known != nullptr ? known : g_names.Enter(name, hash);
}

const CZelAtom *CZelName::RNInternBehind(const CZelAtom *before, const char *text, std::size_t length) {
    const CZelAtom *name = RNIntern(text, length);
    if (before != nullptr && name != nullptr)
        entryOf(before)->m_successor.store(name, std::memory_order_release);
    return name;
}

const CZelAtom *CZelName::RNFind(const char *text, std::size_t length) {
    return length > MAX_LENGTH ? nullptr : g_names.Find({text, length}, ZelHashText(text, length));
}

std::size_t CZelName::RNCount() {
    return g_names.Count();
}

CZelAtom CZelName::atomOver(char *text, std::size_t length) {
    CZelAtom atom;
    atom.setWords(
        CZelAtom::headOf(E_RDTText, CZelAtom::BORROWED | CZelAtom::INTERNED, static_cast<std::uint32_t>(length)),
        CZelAtom::wordOf(text));
    return atom;
}
