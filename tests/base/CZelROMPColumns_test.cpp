// Picked values against the decoded record, for sound and for damaged packets.
#include "foundations/base/CZelROMPColumns.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "base/RandomValues.h"
#include "foundations/base/CZelROMPer.h"
#include "foundations/base/CZelROMPer_format.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"

namespace {

constexpr std::array<const char *, 4> NAMES = {"n1", "n2", "n3", "absent"};

// On the heap and of its exact size, so that a read past its end is seen.
std::unique_ptr<unsigned char[]> packed(const CZelRecord &record, int *length) {
    CZelROMPer packet(CZelROMPer::INITIAL_SIZE);
    EXPECT_EQ(1, record.ROMEncode(packet));
    *length = packet.RRCreatedLength();
    auto bytes = std::make_unique<unsigned char[]>(static_cast<std::size_t>(*length));
    std::memcpy(bytes.get(), packet.RRPacket(), static_cast<std::size_t>(*length));
    return bytes;
}

bool isFlat(const CZelAtom *value) {
    return CZelAtom::RAIsNull(value) || value->RAIsNumber() || value->RAType() == E_RDTText;
}

bool isSameOrNull(const CZelAtom *left, const CZelAtom *right) {
    return CZelAtom::RAIsNull(left) ? CZelAtom::RAIsNull(right) : IsSame(left, right);
}

class ROMPColumns : public testing::Test {
protected:
    ROMPColumns() {
        for (const CZelAtom &name : m_names)
            m_columns.add(name);
    }

    void fill(CZelRecord &record, int depth) {
        const std::unique_ptr<CZelVBList> members(m_values.Members(depth));
        for (const CZelVarBind *member = members->RVBLHead(); member != nullptr;
             member = members->RVBLGetNext(member)) {
            CZelAtom *value = member->RVBValue() != nullptr ? new CZelAtom(*member->RVBValue()) : nullptr;
            record.RRAddValue(member->RVBName().RAString(), &value);
        }
    }

    void compare(const CZelRecord &record) const {
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            ASSERT_TRUE(isSameOrNull(record.RRValueOf(&m_names[i]), m_columns.value(i)));
            ASSERT_EQ(record.RRValuePairOf(&m_names[i]) != nullptr, m_columns.isThere(i));
        }
    }

    // Changes a byte of the body of some entry.
    void lie(unsigned char *packet, int length) {
        std::vector<int> places;
        for (int head = 0; head < length;) {
            const int size = static_cast<int>(RompLoad<std::uint32_t>(packet + head));
            head += static_cast<int>(ROMP_HEAD_SIZE);
            for (int i = 0; i < size; ++i)
                places.push_back(head + i);
            head += size;
        }
        if (!places.empty())
            packet[places[static_cast<std::size_t>(m_values.Below(static_cast<int>(places.size())))]] =
                static_cast<unsigned char>(m_values.Below(2) == 0 ? m_values.Below(17) : m_values.Below(256));
    }

    std::vector<CZelAtom> m_names{NAMES.begin(), NAMES.end()};
    CZelROMPColumns m_columns;
    RandomValues m_values;
    CZelErrorCapture m_reports;
};

}  // namespace

TEST_F(ROMPColumns, GiveWhatTheDecodedRecordGives) {
    for (int step = 0; step < 3000; ++step) {
        CZelRecord record;
        fill(record, 2);
        int length = 0;
        const auto bytes = packed(record, &length);
        bool areFlat = true;
        for (const CZelAtom &name : m_names)
            areFlat = areFlat && isFlat(record.RRValueOf(&name));
        ASSERT_EQ(areFlat, m_columns.pick(bytes.get(), length));
        if (areFlat)
            compare(record);
        ASSERT_EQ(areFlat ? CZelROMPColumns::PICKED : CZelROMPColumns::SOUND,
                  m_columns.pickChecked(bytes.get(), length));
        if (areFlat)
            compare(record);
    }
}

// Lengths, counts, types and texts of any kind under checks that hold.
TEST_F(ROMPColumns, ArePickedFromNoPacketThatDoesNotDecode) {
    const CZelErrorCapture quiet;
    int decoded = 0;
    for (int step = 0; step < 20000; ++step) {
        CZelRecord record;
        fill(record, 2);
        int length = 0;
        const auto bytes = packed(record, &length);
        for (int changes = m_values.Below(3); changes > 0; --changes)
            lie(bytes.get(), length);
        RompSeal(bytes.get(), static_cast<std::size_t>(length));
        CZelRecord found;
        const bool decodes = found.ROMDecode(bytes.get(), length) == E_RCOk;
        const CZelROMPColumns::Finding finding = m_columns.pickChecked(bytes.get(), length);
        ASSERT_EQ(decodes, finding != CZelROMPColumns::DAMAGED);
        if (finding == CZelROMPColumns::PICKED)
            compare(found);
        decoded += decodes ? 1 : 0;
    }
    EXPECT_GT(decoded, 1000);
    EXPECT_LT(decoded, 19000);
}

// What can't be walked is refused, and whatever the bytes are nothing behind them is read.
TEST_F(ROMPColumns, ReadNothingBehindADamagedPacket) {
    for (int step = 0; step < 300; ++step) {
        CZelRecord record;
        fill(record, 1);
        int length = 0;
        const auto bytes = packed(record, &length);
        for (int cut = 1; cut < length; ++cut) {
            const auto part = std::make_unique<unsigned char[]>(static_cast<std::size_t>(cut));
            std::memcpy(part.get(), bytes.get(), static_cast<std::size_t>(cut));
            m_columns.pick(part.get(), cut);
            m_columns.pickChecked(part.get(), cut);
        }
        for (int place = 0; place < length; ++place) {
            bytes[static_cast<std::size_t>(place)] ^= static_cast<unsigned char>(1 + m_values.Below(255));
            m_columns.pick(bytes.get(), length);
            EXPECT_EQ(CZelROMPColumns::DAMAGED, m_columns.pickChecked(bytes.get(), length));
        }
    }
    CZelRecord record;
    record.RRAddValue("other", "x");
    int length = 0;
    const auto bytes = packed(record, &length);
    EXPECT_TRUE(m_columns.pick(bytes.get(), length));
    EXPECT_FALSE(m_columns.pick(bytes.get(), length - 1));
    bytes[0] ^= 1;  // of the head
    EXPECT_FALSE(m_columns.pick(bytes.get(), length));
}
