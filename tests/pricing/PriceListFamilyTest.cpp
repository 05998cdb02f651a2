// Behaviour shared by the four price-list classes, run over each of them.
#include "PlainFileBytes.h"
#include "PriceListTraits.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace plaintest;
namespace fs = std::filesystem;

namespace {

template <class Traits>
class PriceListFamilyTest : public ::testing::Test {
protected:
    using File = typename Traits::File;

    // A binary file whose list i holds i records; byte b of record r of list i is i*16 + r + b.
    std::string HandWrittenBinary(const std::string& loadPath) const {
        std::string bytes = PriceHeader(Traits::kIdent, loadPath);
        const std::vector<std::size_t> sizes = Traits::RecordSizes();
        for (std::size_t list = 0; list < sizes.size(); ++list) {
            AppendInt32(bytes, static_cast<int32_t>(list));
            for (std::size_t r = 0; r < list; ++r)
                for (std::size_t b = 0; b < sizes[list]; ++b)
                    bytes.push_back(static_cast<char>(list * 16 + r + b));
        }
        return bytes;
    }

    static std::vector<std::size_t> Ascending(std::size_t n) {
        std::vector<std::size_t> counts(n);
        for (std::size_t i = 0; i < n; ++i)
            counts[i] = i;
        return counts;
    }

    testsupport::TempDir dir;
    testsupport::MessageCapture messages;
};

using PriceListClasses = ::testing::Types<BethMill, UsMill, BethPlate, UsPlate>;
TYPED_TEST_SUITE(PriceListFamilyTest, PriceListClasses);

TYPED_TEST(PriceListFamilyTest, BinaryLoadsInFileOrderAndSavesBackByteForByte) {
    const std::string path = this->dir.file("prices.dat");
    const std::string original = this->HandWrittenBinary(path);
    WriteBytes(path, original);

    typename TypeParam::File file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(this->Ascending(TypeParam::RecordSizes().size()), TypeParam::Counts(file));

    const std::string copy = this->dir.file("copy.dat");
    EXPECT_EQ(1, file.Save(copy.c_str()));
    EXPECT_EQ(original, ReadBytes(copy));  // the header keeps the load path
    EXPECT_EQ(1, file.Save(nullptr));
    EXPECT_EQ(original, ReadBytes(path));
    EXPECT_FALSE(fs::exists(this->dir.file("prices.DOS")));
    EXPECT_EQ(0u, this->messages.count());
}

TYPED_TEST(PriceListFamilyTest, EmptyListsSaveAsZeroCountsBehindTheHeader) {
    const std::string path = this->dir.file("empty.txt");
    WriteBytes(path, "no sections here\n");
    typename TypeParam::File file;
    ASSERT_EQ(1, file.Initialize(path));  // path as a string, saved back to it by default
    ASSERT_EQ(1, file.Save());

    std::string expected = PriceHeader(TypeParam::kIdent, path);
    for (std::size_t i = 0; i < TypeParam::RecordSizes().size(); ++i)
        AppendInt32(expected, 0);
    EXPECT_EQ(expected, ReadBytes(path));

    typename TypeParam::File again;
    ASSERT_EQ(1, again.Initialize(path.c_str()));
    EXPECT_EQ(std::vector<std::size_t>(TypeParam::RecordSizes().size(), 0), TypeParam::Counts(again));
}

TYPED_TEST(PriceListFamilyTest, IdentificationCountsOnlyWithItsTerminatingZero) {
    const std::string path = this->dir.file("prices.txt");
    std::string bytes = this->HandWrittenBinary(path);
    bytes[std::strlen(TypeParam::kIdent)] = 'X';
    WriteBytes(path, bytes);

    typename TypeParam::File file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(std::vector<std::size_t>(TypeParam::RecordSizes().size(), 0), TypeParam::Counts(file));
    EXPECT_EQ(bytes, ReadBytes(this->dir.file("prices.DOS")));  // read as the text form
}

TYPED_TEST(PriceListFamilyTest, TextFormIsCopiedBesideAsDosAndLeftAsItWas) {
    const std::string path = this->dir.file("LIST.PRC");
    const std::string text = "BASE PRICE INFO\n1,A,2\n";
    WriteBytes(path, text);
    WriteBytes(this->dir.file("LIST.DOS"), "an older copy");

    typename TypeParam::File file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(1u, TypeParam::Counts(file)[0]);
    EXPECT_EQ(text, ReadBytes(this->dir.file("LIST.DOS")));
    EXPECT_EQ(text, ReadBytes(path));
}

TYPED_TEST(PriceListFamilyTest, FileThatCannotBeReadIsReportedAndLeavesListsAlone) {
    const std::string present = this->dir.file("present.txt");
    WriteBytes(present, "BASE PRICE INFO\n1,A,2\n");
    typename TypeParam::File file;
    ASSERT_EQ(1, file.Initialize(present.c_str()));
    ASSERT_EQ(0u, this->messages.count());

    for (const std::string& path : {this->dir.file("missing.dat"), this->dir.path().string(), std::string()}) {
        this->messages.clear();
        EXPECT_EQ(0, file.Initialize(path.c_str())) << path;
        ASSERT_EQ(1u, this->messages.count()) << path;
        EXPECT_EQ("Error", this->messages.messages()[0].caption);
        EXPECT_EQ(TypeParam::kCannotOpen, this->messages.lastText());
        EXPECT_EQ(1u, TypeParam::Counts(file)[0]);
    }
    this->messages.clear();
    EXPECT_EQ(0, file.Initialize(nullptr));
    EXPECT_EQ(TypeParam::kCannotOpen, this->messages.lastText());
}

TYPED_TEST(PriceListFamilyTest, ShortBodyKeepsTheWholeRecordsRead) {
    const std::string path = this->dir.file("short.dat");
    const std::size_t size = TypeParam::RecordSizes()[0];
    std::string bytes = PriceHeader(TypeParam::kIdent, path);
    AppendInt32(bytes, 3);
    bytes.append(2 * size + size / 2, 'r');
    WriteBytes(path, bytes);

    typename TypeParam::File file;
    EXPECT_EQ(1, file.Initialize(path.c_str()));
    std::vector<std::size_t> expected(TypeParam::RecordSizes().size(), 0);
    expected[0] = 2;
    EXPECT_EQ(expected, TypeParam::Counts(file));

    // A count far beyond the file, and a body cut inside a count.
    bytes = PriceHeader(TypeParam::kIdent, path);
    AppendInt32(bytes, 0x7fffffff);
    bytes.append(size, 'r');
    WriteBytes(path, bytes);
    file.Reset();
    EXPECT_EQ(1, file.Initialize(path.c_str()));
    expected[0] = 1;
    EXPECT_EQ(expected, TypeParam::Counts(file));

    WriteBytes(path, PriceHeader(TypeParam::kIdent, path) + "\x01\x00");
    file.Reset();
    EXPECT_EQ(1, file.Initialize(path.c_str()));
    expected[0] = 0;
    EXPECT_EQ(expected, TypeParam::Counts(file));
    EXPECT_EQ(0u, this->messages.count());
}

TYPED_TEST(PriceListFamilyTest, SecondInitializeAddsAndResetForgetsListsAndPath) {
    const std::string path = this->dir.file("prices.dat");
    WriteBytes(path, this->HandWrittenBinary(path));
    typename TypeParam::File file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    ASSERT_EQ(1, file.Initialize(path.c_str()));
    EXPECT_EQ(2u, TypeParam::Counts(file)[1]);

    EXPECT_EQ(1, file.Reset());
    EXPECT_EQ(std::vector<std::size_t>(TypeParam::RecordSizes().size(), 0), TypeParam::Counts(file));
    EXPECT_EQ(0, file.Save(nullptr));  // no path left to write to
    const std::string other = this->dir.file("other.dat");
    ASSERT_EQ(1, file.Save(other.c_str()));
    EXPECT_EQ('\0', ReadBytes(other)[kPathOffset]);
}

TYPED_TEST(PriceListFamilyTest, FailedSaveLeavesTargetAndFolderAsTheyWere) {
    const std::string path = this->dir.file("prices.dat");
    const std::string original = this->HandWrittenBinary(path);
    WriteBytes(path, original);
    typename TypeParam::File file;
    ASSERT_EQ(1, file.Initialize(path.c_str()));

    const fs::path blocker = this->dir.path() / "blocker";
    fs::create_directories(blocker / "inside");
    EXPECT_EQ(0, file.Save(blocker.string().c_str()));
    EXPECT_TRUE(fs::is_directory(blocker / "inside"));
    EXPECT_EQ(0, file.Save((this->dir.path() / "no-such-folder" / "x.dat").string().c_str()));

    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(this->dir.path()))
        ++entries;
    EXPECT_EQ(2u, entries);  // prices.dat and blocker: no temporary file left behind
    EXPECT_EQ(original, ReadBytes(path));
}

}  // namespace
