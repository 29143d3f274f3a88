// Any bytes as a cache file: read in, every record read, one replaced, one released; what is there afterwards is what
// is found at the next start. The first byte says whether the pages are put right before: a fuzzer finds no checksums,
// and what it does to links, lengths and stamps would never be looked at.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "foundations/base/CZelROMPWrapper.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "store/CZelPageFile.h"
#include "tests/support/MemoryFiles.h"

namespace {

constexpr const char *PATH = "/pages";

class Records : public CZelPageFile::Reader {
public:
    bool takeChain(long start, const unsigned char *encoding, int length) override {
        if (length % 7 == 0)
            return false;  // some are no records
        m_all[start] = std::string(reinterpret_cast<const char *>(encoding), static_cast<std::size_t>(length));
        return true;
    }
    std::map<long, std::string> m_all;
};

void check(bool holds) {
    if (!holds)
        std::abort();
}

// Every page that is not empty gets the position where it lies and a checksum that holds.
void putRight(MemoryFiles::Bytes &bytes) {
    constexpr std::size_t PAGE = CZelROMPWrapper::PAGE_BYTES;
    for (std::size_t place = 0; place + PAGE <= bytes.size(); place += PAGE) {
        CZelROMPWrapper page(bytes.data() + place);
        if (page.RRWCondition() == CZelROMPWrapper::EMPTY)
            continue;
        page.RRWSetPosition(static_cast<long>(place));
        std::copy_n(page.RRWGetData(), PAGE, bytes.data() + place);
    }
}

void readEach(CZelPageFile &file, const Records &records) {
    for (const auto &[start, text] : records.m_all) {
        unsigned char *encoding = nullptr;
        int length = 0;
        check(file.read(start, &encoding, &length) == 1);
        check(std::string(reinterpret_cast<char *>(encoding), static_cast<std::size_t>(length)) == text);
        std::free(encoding);
    }
}

// The last record goes, the first one is replaced.
void change(CZelPageFile &file, Records &records) {
    if (!records.m_all.empty()) {
        check(file.release(records.m_all.rbegin()->first) == 1);
        records.m_all.erase(std::prev(records.m_all.end()));
    }
    if (!records.m_all.empty()) {
        const std::string text(701, 'n');
        long start = 0;
        const int status =
            file.write(reinterpret_cast<const unsigned char *>(text.data()), 701, records.m_all.begin()->first, &start);
        check(status == 1 || status == E_RCNoHandle);  // there may be no stamp left
        if (status != 1)
            return;
        records.m_all.erase(records.m_all.begin());
        records.m_all[start] = text;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const CZelErrorCapture quiet;
    MemoryFiles files;
    MemoryFiles::Bytes &bytes = files.files()[PATH] = MemoryFiles::Bytes(data + 1, data + size);
    if (data[0] == 1)
        putRight(bytes);
    Records before;
    {
        CZelPageFile file;
        check(file.open(PATH, true) == 1);
        if (file.readAll(before) != 1)
            return 0;
        readEach(file, before);
        change(file, before);
        readEach(file, before);
    }
    Records after;
    CZelPageFile file;
    check(file.open(PATH, true) == 1 && file.readAll(after) == 1);
    check(before.m_all == after.m_all);
    return 0;
}
