#include "TestSupport.h"

#include "BTRCALL.h"
#include "REBtrieveBase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace {

constexpr int kRecordLength = 20;
constexpr int kKeyLength = 10;
constexpr unsigned int kStopIcon = 16;

// Exposes the buffers a derived file class works with.
class Probe : public REBtrieveBase {
public:
    int keyLength() const { return m_keyLength; }
    const uint8_t* keyBuffer() const { return m_keyBuffer; }
    bool keyBufferIsZero() const {
        for (uint8_t byte : m_keyBuffer)
            if (byte != 0)
                return false;
        return true;
    }
};

// Creates (or replaces) a file of 20-byte records with one unique string key over the first ten
// bytes; returns the record manager's status.
int16_t CreateFile(const std::string& path) {
    uint8_t spec[32] = {0};
    auto put16 = [&spec](int offset, uint16_t value) {
        spec[offset] = static_cast<uint8_t>(value & 0xff);
        spec[offset + 1] = static_cast<uint8_t>(value >> 8);
    };
    put16(0, kRecordLength);
    put16(2, 4096);
    put16(4, 1);
    put16(16, 1);
    put16(18, kKeyLength);
    put16(20, 0x0102);
    spec[26] = 11;
    uint8_t posBlock[128] = {0};
    uint32_t length = sizeof spec;
    char key[256] = {0};
    std::snprintf(key, sizeof key, "%s", path.c_str());
    return BTRCALL(REBtrieveBase::kOpCreate, posBlock, spec, &length, key, static_cast<uint8_t>(path.size()), 0);
}

// Inserts `count` records with keys "K0000", "K0001", ... through the object's short call form.
void InsertRecords(REBtrieveBase& file, int count) {
    file.SetDataBufLen(kRecordLength);
    file.SetKeyNumber(0);
    for (int i = 0; i < count; ++i) {
        char record[kRecordLength] = {0};
        std::snprintf(record, sizeof record, "K%04d", i);
        ASSERT_EQ(file.Btrieve(REBtrieveBase::kOpInsert, record), 0) << i;
    }
}

class REBtrieveBaseTest : public ::testing::Test {
protected:
    void SetUp() override {
        path = dir.file("base.dat");
        ASSERT_EQ(CreateFile(path), 0);
    }

    void ExpectOneStatusBox(const std::string& text) {
        ASSERT_EQ(capture.count(), 1u);
        EXPECT_EQ(capture.messages()[0].caption, "");
        EXPECT_EQ(capture.messages()[0].text, text);
        EXPECT_EQ(capture.messages()[0].style, kStopIcon);
    }

    testsupport::TempDir dir;
    // Declared before any file object of a test, so it sees the messages of their destructors.
    testsupport::MessageCapture capture;
    std::string path;
};

}  // namespace

TEST_F(REBtrieveBaseTest, OpenStatAndClose) {
    Probe file;
    EXPECT_EQ(file.IsOpen(), 0);
    ASSERT_EQ(file.Open(path.c_str()), 1);
    EXPECT_EQ(file.IsOpen(), 1);
    EXPECT_STREQ(file.GetFileName(), path.c_str());
    // The path no longer sits in the key buffer once the file is open.
    EXPECT_EQ(file.keyLength(), 255);
    EXPECT_TRUE(file.keyBufferIsZero());

    STAT_BUFFER stat;
    std::memset(&stat, 0xee, sizeof stat);
    ASSERT_EQ(file.GetStatus(&stat), 1);
    // Packed fields are compared by value (the unary plus): a reference to one may be misaligned.
    EXPECT_EQ(+stat.recordLength, kRecordLength);
    EXPECT_EQ(+stat.pageSize, 4096);
    EXPECT_EQ(+stat.numberOfKeys, 1);
    EXPECT_EQ(+stat.numberOfRecords, 0u);

    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(file.IsOpen(), 0);
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(file.GetStatus(&stat), 0);
    EXPECT_EQ(capture.count(), 0u);
}

TEST_F(REBtrieveBaseTest, OpenOnAnOpenObjectIsRefusedWithoutACall) {
    REBtrieveBase file;
    ASSERT_EQ(file.Open(path.c_str()), 1);
    // A missing path would make the record manager answer (and a message be shown).
    const std::string missing = dir.file("missing.dat");
    EXPECT_EQ(file.Open(missing.c_str()), 0);
    EXPECT_EQ(file.IsOpen(), 1);
    EXPECT_STREQ(file.GetFileName(), path.c_str());
    EXPECT_EQ(capture.count(), 0u);
}

TEST_F(REBtrieveBaseTest, RefusedOpensShowTheStatus) {
    // Windows hands Open the short form of the path, which a missing file does not have, so the
    // record manager is given an empty name.
#if defined(_WIN32)
    const std::string missingText = "Btrieve Error : Invalid filename";
#else
    const std::string missingText = "Btrieve Error : File not found";
#endif
    struct Case {
        std::string path;
        std::string text;
    };
    std::ofstream(dir.file("plain.txt")) << "not a record-manager file";
    const Case cases[] = {
        {dir.file("missing.dat"), missingText},
        {dir.path().string(), "Btrieve Error : File not found"},
        {dir.file("plain.txt"), "Btrieve Error : Incompatible file"},
        {"", "Btrieve Error : Invalid filename"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        capture.clear();
        REBtrieveBase file;
        EXPECT_EQ(file.Open(c.path.c_str()), 0);
        EXPECT_EQ(file.IsOpen(), 0);
        ExpectOneStatusBox(c.text);
    }
    capture.clear();
    REBtrieveBase file;
    EXPECT_EQ(file.Open(nullptr), 0);
    ExpectOneStatusBox("Btrieve Error : Invalid filename");
}

TEST_F(REBtrieveBaseTest, PathsBeyondTheKeyBufferFailSilently) {
    // A path of exactly 254 characters still fits the key buffer with its NUL.
    std::string longest = dir.path().string() + "/";
    longest += std::string(254 - longest.size(), 'p');
    ASSERT_EQ(longest.size(), 254u);
    ASSERT_EQ(CreateFile(longest), 0);
    Probe file;
    EXPECT_EQ(file.Open(longest.c_str()), 1);
    EXPECT_EQ(file.Close(), 1);

    for (size_t length : {255u, 259u, 400u}) {
        SCOPED_TRACE(length);
        std::string tooLong = longest + std::string(length - 254, 'q');
        REBtrieveBase other;
        EXPECT_EQ(other.Open(tooLong.c_str()), 0);
        EXPECT_EQ(other.IsOpen(), 0);
        // The name is kept as far as it fits.
        EXPECT_EQ(std::string(other.GetFileName()), tooLong.substr(0, std::min<size_t>(length, 259)));
    }
    EXPECT_EQ(capture.count(), 0u);
}

TEST_F(REBtrieveBaseTest, RecordCountReadsTheStoredWordsAsDecimalText) {
    REBtrieveBase file;
    EXPECT_EQ(file.GetNoOfRecords(), 0);
    ASSERT_EQ(file.Open(path.c_str()), 1);
    EXPECT_EQ(file.GetNoOfRecords(), 0);
    // Counts below 48 ('0') read as 0; 49 is the byte '1', 57 the byte '9'.
    InsertRecords(file, 48);
    EXPECT_EQ(file.GetNoOfRecords(), 0);
    STAT_BUFFER stat;
    ASSERT_EQ(file.GetStatus(&stat), 1);
    EXPECT_EQ(+stat.numberOfRecords, 48u);
    char record[kRecordLength] = {0};
    file.SetDataBufLen(kRecordLength);
    for (int i = 48; i < 57; ++i) {
        std::snprintf(record, sizeof record, "K%04d", i);
        ASSERT_EQ(file.Btrieve(REBtrieveBase::kOpInsert, record), 0);
        EXPECT_EQ(file.GetNoOfRecords(), i - 47);
    }
    EXPECT_EQ(capture.count(), 0u);
}

TEST_F(REBtrieveBaseTest, ShortCallFormReportsTheReturnedLength) {
    REBtrieveBase file;
    ASSERT_EQ(file.Open(path.c_str()), 1);
    InsertRecords(file, 2);
    char record[64] = {0};
    file.SetDataBufLen(sizeof record);
    file.SetKeyNumber(0);
    ASSERT_EQ(file.Btrieve(REBtrieveBase::kOpGetFirst, record), 0);
    EXPECT_EQ(file.GetDataBufLenRet(), static_cast<uint32_t>(kRecordLength));
    EXPECT_STREQ(record, "K0000");
    // The buffer size given stays for the next call.
    ASSERT_EQ(file.Btrieve(REBtrieveBase::kOpGetNext, record), 0);
    EXPECT_STREQ(record, "K0001");
    // A negative buffer size is no buffer at all.
    file.SetDataBufLen(-1);
    EXPECT_EQ(file.Btrieve(REBtrieveBase::kOpGetFirst, record), REBtrieveBase::kStatusDataBufferTooShort);
    EXPECT_EQ(capture.count(), 0u);
}

TEST_F(REBtrieveBaseTest, LongCallFormAlwaysUsesTheObjectsOwnFile) {
    REBtrieveBase file;
    ASSERT_EQ(file.Open(path.c_str()), 1);
    uint8_t foreignBlock[128];
    std::memset(foreignBlock, 0x5a, sizeof foreignBlock);
    STAT_BUFFER stat;
    uint32_t length = sizeof stat;
    uint8_t key[255] = {0};
    EXPECT_EQ(file.Btrieve(REBtrieveBase::kOpStat, foreignBlock, &stat, &length, key, 255, 0), 0);
    EXPECT_EQ(+stat.recordLength, kRecordLength);
    EXPECT_EQ(file.Btrieve(REBtrieveBase::kOpStat, nullptr, &stat, &length, key, 255, 0), 0);
}

TEST_F(REBtrieveBaseTest, LongCallFormTakesAnUnsignedLongLength) {
    REBtrieveBase file;
    ASSERT_EQ(file.Open(path.c_str()), 1);
    InsertRecords(file, 1);
    char record[64] = {0};
    uint8_t key[255] = {0};
    unsigned long length = sizeof record;
    ASSERT_EQ(file.Btrieve(REBtrieveBase::kOpGetFirst, nullptr, record, &length, key, 255, 0), 0);
    EXPECT_EQ(length, static_cast<unsigned long>(kRecordLength));
    EXPECT_STREQ(record, "K0000");
    // The size given is the buffer the record manager may fill: too small a one is refused.
    length = kRecordLength - 1;
    EXPECT_EQ(file.Btrieve(REBtrieveBase::kOpGetFirst, nullptr, record, &length, key, 255, 0),
              REBtrieveBase::kStatusDataBufferTooShort);
    // A null length still names one form.
    static_assert(requires(REBtrieveBase& b) { b.Btrieve(0, nullptr, nullptr, nullptr, nullptr, 0, 0); });
}

TEST_F(REBtrieveBaseTest, SetKeyBufferZeroesAndBoundsTheKey) {
    Probe file;
    uint8_t longKey[300];
    std::memset(longKey, 'k', sizeof longKey);
    file.SetKeyBuffer(longKey, 300);
    EXPECT_EQ(file.keyLength(), 255);
    EXPECT_EQ(file.keyBuffer()[254], 'k');

    file.SetKeyBuffer("AB", 2);
    EXPECT_EQ(file.keyLength(), 2);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(file.keyBuffer()), 3), std::string("AB\0", 3));
    EXPECT_EQ(file.keyBuffer()[254], 0);

    file.SetKeyBuffer(longKey, -5);
    EXPECT_EQ(file.keyLength(), 0);
    EXPECT_TRUE(file.keyBufferIsZero());
    file.SetKeyBuffer(nullptr, 10);
    EXPECT_TRUE(file.keyBufferIsZero());
}

TEST_F(REBtrieveBaseTest, DestructorClosesTheFile) {
    {
        REBtrieveBase file;
        ASSERT_EQ(file.Open(path.c_str()), 1);
        // The record manager will not replace a file that is open somewhere.
        EXPECT_EQ(CreateFile(path), 25);
    }
    EXPECT_EQ(CreateFile(path), 0);
    EXPECT_EQ(capture.count(), 0u);
}

TEST_F(REBtrieveBaseTest, CopiesShareTheOpenFile) {
    REBtrieveBase original;
    ASSERT_EQ(original.Open(path.c_str()), 1);
    InsertRecords(original, 3);
    {
        REBtrieveBase copy(original);
        EXPECT_EQ(copy.IsOpen(), 1);
        EXPECT_STREQ(copy.GetFileName(), path.c_str());
        EXPECT_EQ(copy.GetNoOfRecords(), 0);
        STAT_BUFFER stat;
        ASSERT_EQ(copy.GetStatus(&stat), 1);
        EXPECT_EQ(+stat.numberOfRecords, 3u);

        // One position: a scan through one copy continues through the other.
        char record[kRecordLength] = {0};
        original.SetDataBufLen(kRecordLength);
        copy.SetDataBufLen(kRecordLength);
        ASSERT_EQ(original.Btrieve(REBtrieveBase::kOpGetFirst, record), 0);
        ASSERT_EQ(copy.Btrieve(REBtrieveBase::kOpGetNext, record), 0);
        EXPECT_STREQ(record, "K0001");
    }
    // The copy closed the file on its way out; the original's flag is still set.
    EXPECT_EQ(original.IsOpen(), 1);
    STAT_BUFFER stat;
    EXPECT_EQ(original.GetStatus(&stat), 0);
    ExpectOneStatusBox("Btrieve Error : File not open");
    capture.clear();
    // A failed close leaves the object marked open.
    EXPECT_EQ(original.Close(), 0);
    EXPECT_EQ(original.IsOpen(), 1);
    ExpectOneStatusBox("Btrieve Error : File not open");
}

TEST_F(REBtrieveBaseTest, AssignmentSharesTheFileAndCopiesOfClosedObjectsAreClosed) {
    REBtrieveBase open;
    ASSERT_EQ(open.Open(path.c_str()), 1);
    REBtrieveBase assigned;
    REBtrieveBase& self = assigned;
    assigned = self;
    EXPECT_EQ(assigned.IsOpen(), 0);
    assigned = open;
    EXPECT_EQ(assigned.IsOpen(), 1);
    EXPECT_EQ(assigned.Close(), 1);
    EXPECT_EQ(open.Close(), 0);
    capture.clear();

    REBtrieveBase closed;
    REBtrieveBase copyOfClosed(closed);
    EXPECT_EQ(copyOfClosed.IsOpen(), 0);
    EXPECT_EQ(copyOfClosed.Close(), 0);
    EXPECT_EQ(capture.count(), 0u);
}

TEST_F(REBtrieveBaseTest, VersionNeedsNoOpenFileAndShowsNothing) {
    REBtrieveBase file;
    char version[16] = {0};
    int length = sizeof version;
    EXPECT_EQ(file.GetVersionInfo(version, &length), 1);
    EXPECT_EQ(length, 5);
    int shortLength = 2;
    EXPECT_EQ(file.GetVersionInfo(version, &shortLength), 0);
    EXPECT_EQ(file.GetVersionInfo(version, nullptr), 0);
    EXPECT_EQ(capture.count(), 0u);
}
