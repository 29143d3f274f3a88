#include "store/CZelCachedRecord.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/port/CZelErrorCapture.h"
#include "store/CacheTest.h"

namespace {

long present = 0;

class CachedRecordTest : public ::testing::Test {
protected:
    CachedRecordTest() {
        CZelCachedRecord::RCRSetClock([] { return present; });
    }
    ~CachedRecordTest() override { CZelCachedRecord::RCRSetClock(nullptr); }

    // "type counts last-access position, core, disk"
    static std::string state(const CZelCachedRecord &entry) {
        std::string text = std::to_string(entry.RCRGetRecordType());
        for (const long number : {entry.RCRGetRefCount(), entry.RCRGetLastAccess(), entry.RCRGetStartPos()})
            text += ' ' + std::to_string(number);
        text += entry.RCRIsRecordInCore() == E_RBTrue ? " core" : "";
        return text + (entry.RCRIsRecordOnDisk() == E_RBTrue ? " disk" : "");
    }

    CZelErrorCapture reports;
};

TEST_F(CachedRecordTest, ARecordThatIsNotPersistentIsInMemoryOrOnDisk) {
    CZelCachedRecord entry(rowOfText("a"), E_RBFalse, E_RBFalse);
    EXPECT_EQ("2 -1 -1 -1 core", state(entry));
    present = 1000;
    entry.RCRRecordAccess();
    EXPECT_EQ("2 0 1000 -1 core", state(entry));
    entry.RCRSetOnDisk(512);
    EXPECT_EQ("3 -1 -1 512 disk", state(entry));
    entry.RCRRecordAccess();  // of no record
    EXPECT_EQ("3 -1 -1 512 disk", state(entry));
    entry.RCRSetInCore(rowOfText("b"), E_RBFalse);
    EXPECT_EQ("2 0 0 -1 core", state(entry));
    EXPECT_EQ("3 -1 -1 1024 disk", state(CZelCachedRecord(1024, E_RBFalse)));
}

TEST_F(CachedRecordTest, APersistentRecordStaysOneAndCanBeInBothPlaces) {
    CZelCachedRecord entry(rowOfText("a"), E_RBFalse, E_RBTrue);
    EXPECT_EQ("4 -1 -1 -1 core", state(entry));
    entry.RCRSetPersistant(512);
    EXPECT_EQ("4 0 0 512 core disk", state(entry));
    entry.RCRSetOnDisk(512);
    EXPECT_EQ("4 -1 -1 512 disk", state(entry));
    entry.RCRSetPersistant(rowOfText("b"), E_RBFalse);
    EXPECT_EQ("4 -1 -1 512 core disk", state(entry));
    entry.RCRSetPersistant();
    EXPECT_EQ("4 -1 -1 512 disk", state(entry));
    entry.RCRSetPersistant(rowOfText("c"), E_RBFalse, 1024);
    EXPECT_EQ("4 0 0 1024 core disk", state(entry));
    EXPECT_EQ(0U, reports.Count());
}

TEST_F(CachedRecordTest, DroppingAPersistentRecordThatHasNoPlaceIsReported) {
    CZelCachedRecord entry(rowOfText("a"), E_RBFalse, E_RBTrue);
    entry.RCRSetPersistant();
    EXPECT_TRUE(reports.Holds(E_RCBadArgument));
}

TEST_F(CachedRecordTest, CopiesAreApartFromWhatTheyCopy) {
    const std::unique_ptr<CZelRecord> given(rowOfText("a"));
    const CZelCachedRecord entry(given.get(), E_RBTrue, E_RBFalse);
    EXPECT_NE(given.get(), entry.RCRGetRecord());
    const std::unique_ptr<CZelRecord> copy(entry.RCRGetCopiedRecord());
    EXPECT_NE(copy.get(), entry.RCRGetRecord());
    EXPECT_EQ("a", textOf(copy.get()));
    EXPECT_EQ(nullptr, CZelCachedRecord(0, E_RBTrue).RCRGetCopiedRecord());
}

TEST_F(CachedRecordTest, ThePagesOfARecordHoldItsEncodingInOrder) {
    const std::string text(1500, 'x');
    const CZelCachedRecord entry(rowOfText(text), E_RBFalse, E_RBFalse);
    const std::unique_ptr<CZelDoubleList> pages(entry.RCRWrapRecord());
    std::string encoding;
    for (CZelListable *node = pages->RDLHead(); node != nullptr; node = pages->RDLGetNext(node)) {
        const auto *page = static_cast<const CZelROMPWrapper *>(node);
        EXPECT_EQ(ZelBool(encoding.empty()), page->RRWGetIsFirstPkt());
        EXPECT_EQ(1500 + ROW_FRAME, page->RRWGetTotalLen());
        encoding.append(reinterpret_cast<const char *>(page->RRWGetROMPData()),
                        static_cast<std::size_t>(page->RRWGetDataLen()));
    }
    CZelRecord row;
    ASSERT_EQ(
        1, row.ROMDecode(reinterpret_cast<const unsigned char *>(encoding.data()), static_cast<int>(encoding.size())));
    EXPECT_EQ(text, textOf(&row));
    EXPECT_EQ(nullptr, CZelCachedRecord(0, E_RBTrue).RCRWrapRecord());
}

}  // namespace
