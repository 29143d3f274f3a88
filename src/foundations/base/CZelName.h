// The table of interned names: each column or member name exists once in the process, as a text atom
// that is never freed, so that two names are equal when their texts lie at the same address.
//
// The table is bounded, so that names from outside can't fill memory: a name that is too long, or comes
// when the table is full, is not interned and is then compared by its bytes. Since a full table stays full,
// a name that could not be interned once never becomes interned.
//
// Threads: any. A look-up takes no lock; entering a new name takes one.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/ZelShortBytes.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelName {
public:
    static constexpr std::size_t MAX_LENGTH = 255;    // bytes of one name
    static constexpr std::size_t MAX_NAMES = 262144;  // names of one process

    // The atom of a name, entered on first sight. Null when the name is too long or the table is full.
    static const CZelAtom *RNIntern(const char *text, std::size_t length);

    // The name that came behind another the last time, or null: a guess that mostly holds for records of one table.
    // `before` is an atom of this table.
    static const CZelAtom *RNSuccessor(const CZelAtom *before) {
        return entryOf(before)->m_successor.load(std::memory_order_acquire);
    }
    // As RNIntern, and tells RNSuccessor. `before` may be null.
    static const CZelAtom *RNInternBehind(const CZelAtom *before, const char *text, std::size_t length);

    // As RNIntern, in less time where it is the successor of `before`. Tells RNSuccessor only what comes behind a name
    // first, so that threads which use names in different orders don't write to what they share.
    static const CZelAtom *RNInternNext(const CZelAtom *before, std::string_view text) {
        const CZelAtom *guess = before != nullptr ? RNSuccessor(before) : nullptr;
        if (guess == nullptr)
            return RNInternBehind(before, text.data(), text.size());
        return RNIsText(*guess, text) ? guess : RNIntern(text.data(), text.size());
    }

    // Is it the name of that text? `name` is an atom of this table.
    static bool RNIsText(const CZelAtom &name, std::string_view text) {
        return name.m_heap.length == text.size() && ZelSameBytes(textOf(name), text.data(), text.size());
    }

    // The atom of a name that is in the table, or null. Enters nothing.
    static const CZelAtom *RNFind(const char *text, std::size_t length);

    // The atom of an interned name by any atom that shares its text (RAIsInterned), or null.
    static const CZelAtom *RNAtomOf(const CZelAtom &name) {
        return name.RAIsInterned() ? fromText(name.RAString()) : nullptr;
    }

    // Are the two text atoms the same name? Compares addresses where both are interned.
    static bool RNSame(const CZelAtom &left, const CZelAtom &right) {
        if (left.RAIsInterned() && right.RAIsInterned())
            return left.RAString() == right.RAString();
        return left.RASameText(right);
    }

    // How many names the table holds.
    static std::size_t RNCount();

private:
    // An entry's atom has its text right behind it.
    struct Entry {
        std::uint64_t m_hash;
        std::atomic<const CZelAtom *> m_successor;
        CZelAtom m_name;
    };
    static_assert(sizeof(Entry) == 32);
    static Entry *entryOf(const CZelAtom *name) {
        const char *memory = reinterpret_cast<const char *>(name) - (sizeof(Entry) - sizeof(CZelAtom));
        return reinterpret_cast<Entry *>(const_cast<char *>(memory));
    }
    static const char *textOf(const CZelAtom &name) { return reinterpret_cast<const char *>(&name + 1); }
    static const CZelAtom *fromText(const char *text) {
        return reinterpret_cast<const CZelAtom *>(text - sizeof(CZelAtom));
    }
    friend class CZelNameTable;
    static CZelAtom atomOver(char *text, std::size_t length);
};
