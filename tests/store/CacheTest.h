// What the tests of record caches share: rows of a wanted size, and caches in a directory of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelPointer.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "port/ScratchDirectory.h"
#include "store/CZelRecordCache.h"

// A row of one text column `v`.
constexpr int ROW_FRAME = 22;  // bytes of its encoding beside the text

inline CZelRecord *rowOfText(const std::string &text) {
    CZelRecord *row = new CZelRecord;
    row->RRAddValue("v", text.c_str());
    return row;
}

// The number, and as many dots as make the encoding this long.
inline std::string textOfSize(int number, int bytes) {
    std::string text = std::to_string(number);
    text.resize(static_cast<std::size_t>(bytes - ROW_FRAME), '.');
    return text;
}

inline std::string textOf(const CZelRecord *row) {
    return row != nullptr ? row->RRValueOf("v")->RAString() : "<none>";
}

class CacheTest : public ::testing::Test {
protected:
    std::unique_ptr<CZelRecordCache> uncreated(long rowsAtMost = CZelHandleTable::AT_MOST) const {
        auto cache = std::make_unique<CZelRecordCache>(rowsAtMost);
        cache->RRCSetFileLocation(folder.Path("").c_str());
        return cache;
    }
    std::unique_ptr<CZelRecordCache> bySize(unsigned long long bytes, __boolean persistent) const {
        auto cache = uncreated();
        EXPECT_EQ(1, cache->RRCCreateBySize(NAME, bytes, persistent));
        return cache;
    }
    std::unique_ptr<CZelRecordCache> byShare(float share, __boolean persistent) const {
        auto cache = uncreated();
        EXPECT_EQ(1, cache->RRCCreateByPropn(NAME, share, persistent));
        return cache;
    }

    static CZelAtom *add(CZelRecordCache &cache, int number, int bytes) {
        CZelAtom *handle = nullptr;
        EXPECT_EQ(1, cache.RRCCacheRecord(rowOfText(textOfSize(number, bytes)), &handle, E_RBFalse));
        return handle;
    }
    // By a copy.
    static std::string read(CZelRecordCache &cache, CZelAtom *handle) {
        const std::unique_ptr<CZelRecord> row(cache.RRCRetrieveRecord(handle));
        return textOf(row.get());
    }
    // From the encoding, which moves nothing.
    static std::string peek(CZelRecordCache &cache, CZelAtom *handle) {
        CZelPointer encoding(cache.RRCRetrieveROMP(handle));
        if (encoding.RPData() == nullptr)
            return "<none>";
        CZelRecord row;
        EXPECT_EQ(1, row.RRConsumeAndDecode(encoding));
        return textOf(&row);
    }

    template <class Visit>
    static void forEachHandle(CZelRecordCache &cache, Visit visit) {
        const CZelDoubleList *handles = cache.RRCHandleIterator();
        for (const CZelListable *node = handles->RDLHead(); node != nullptr; node = handles->RDLGetNext(node))
            visit(static_cast<CZelAtom *>(static_cast<const CZelPointer *>(node)->RPData()));
    }

    std::string path() const { return folder.Path(NAME); }
    std::string file() const {
        std::ifstream in(path(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    static constexpr const char *NAME = "app.Cache.d.t.LOCAL";
    ScratchDirectory folder;
    CZelErrorCapture reports;
};
