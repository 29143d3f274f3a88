// The table of interned names: each column or member name exists once in the process, as a text atom
// that is never freed, so that two names are equal when their texts lie at the same address.
//
// The table is bounded, so that names from outside can't fill memory: a name that is too long, or comes
// when the table is full, is not interned and is then compared by its bytes. Since a full table stays full,
// a name that could not be interned once never becomes interned.
//
// Threads: any. A look-up takes no lock; entering a new name takes one.
#pragma once

#include <cstddef>

#include "foundations/base/CZelAtom.h"
#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelName {
public:
    static constexpr std::size_t MAX_LENGTH = 255;    // bytes of one name
    static constexpr std::size_t MAX_NAMES = 262144;  // names of one process

    // The atom of a name, entered on first sight. Null when the name is too long or the table is full.
    static const CZelAtom *RNIntern(const char *text, std::size_t length);

    // The same, and quick when this name came behind `before` the last time too, as with records of one
    // table. `before` is null or an atom of this table.
    static const CZelAtom *RNInternBehind(const CZelAtom *before, const char *text, std::size_t length);

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
    // An entry is an atom with its text right behind it.
    static const CZelAtom *fromText(const char *text) {
        return reinterpret_cast<const CZelAtom *>(text - sizeof(CZelAtom));
    }
    friend class CZelNameTable;
    static CZelAtom atomOver(char *text, std::size_t length);
};
