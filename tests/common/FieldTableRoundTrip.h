// Test fixture: the round trip of a field table. An old record whose texts are printable and
// whose other fields hold arbitrary bytes converts to the current layout and back unchanged
// wherever a field of the table covers it.
#pragma once

#include "core/RecordFieldTable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace testsupport {

// Fills the fields of `table` in an old record: texts with printable characters (no trailing
// blank, so that the new text is the whole old one), everything else with random bytes.
inline void FillOldFields(const REFieldTable& table, uint8_t* oldRec, std::mt19937& random) {
    for (const REField& f : table.fields) {
        for (uint32_t i = 0; i < f.count; ++i) {
            uint8_t* at = oldRec + f.oldOffset + f.oldSize * i;
            switch (f.rule) {
            case REFieldRule::kNewOnly:
                break;
            case REFieldRule::kRecord:
                FillOldFields(*f.nested, at, random);
                break;
            case REFieldRule::kText:
            case REFieldRule::kTextRunOn:
                for (uint32_t b = 0; b < f.oldSize; ++b)
                    at[b] = static_cast<uint8_t>('!' + random() % 94);
                break;
            case REFieldRule::kReal: {
                // A finite value that survives widening and narrowing.
                const float value = static_cast<float>(static_cast<int32_t>(random() % 200001) - 100000) / 8.0f;
                if (f.oldSize == sizeof(float)) {
                    std::memcpy(at, &value, sizeof value);
                } else {
                    const double wide = value;
                    std::memcpy(at, &wide, sizeof wide);
                }
                break;
            }
            default:
                for (uint32_t b = 0; b < f.oldSize; ++b)
                    at[b] = static_cast<uint8_t>(random());
            }
        }
    }
}

// Old -> current -> old gives back every byte that a field covers, over `rounds` random records;
// the bytes no field covers are blanks afterwards.
inline void ExpectOldLayoutRoundTrip(const REFieldTable& table, int rounds = 50) {
    std::mt19937 random(7);
    for (int round = 0; round < rounds; ++round) {
        std::vector<uint8_t> oldRec(table.oldSize, ' '), newRec(table.newSize), back(table.oldSize);
        FillOldFields(table, oldRec.data(), random);
        ASSERT_EQ(1, REConvertToNew(table, oldRec.data(), newRec.data()));
        ASSERT_EQ(1, REConvertToOld(table, newRec.data(), back.data()));
        ASSERT_EQ(oldRec, back) << "round " << round;
    }
}

}  // namespace testsupport
