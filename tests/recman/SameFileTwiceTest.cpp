// A process that opens one file through several handles, and replaces or checks other files
// meanwhile, must keep every lock its store connection holds: should one of them drop, another
// process's close could take the file as unused, fold the log into it and delete the log while
// this process still writes there.
#include "ChildProcess.h"
#include "ConformanceFixture.h"

namespace conformance {
namespace {

using testsupport::ChildProcess;

class SameFileTwice : public Conformance {};

TEST_F(SameFileTwice, AnotherProcessesCloseLeavesThisProcessesWritesAlone) {
    const std::string file = makeFile(twoKeyFile());
    Handle first, second, third;
    ASSERT_EQ(st::Ok, first.open(file));
    ASSERT_EQ(st::Ok, first.insert(twoKeyRecord(1, 1, 1)));
    ASSERT_EQ(st::Ok, second.open(file));
    ASSERT_EQ(st::Ok, second.close());
    ASSERT_EQ(st::CannotCreate, create(file, twoKeyFile())) << "open here";
    ASSERT_EQ(st::Ok, third.open(file, -2));

    // Other processes come and go while this one writes; the first one's close must find this
    // process still using the file, or the second writes into a new log beside this one's.
    {
        ChildProcess other("recmanUser");
        ASSERT_EQ("0", other.request("open " + file + " 0"));
        ASSERT_EQ("0", other.request("insert 2 2 2"));
        ASSERT_EQ("0", other.request("close"));
    }
    ChildProcess later("recmanUser");
    ASSERT_EQ("0", later.request("open " + file + " 0"));
    for (int i = 10; i < 210; ++i) {
        ASSERT_EQ(st::Ok, first.insert(twoKeyRecord(i % 256, i, i)));
        ASSERT_EQ("0", later.request("insert 3 " + std::to_string(1000 + i) + " 0"));
    }
    ASSERT_EQ("0", later.request("close"));
    ASSERT_EQ(st::Ok, first.close());
    ASSERT_EQ(st::Ok, third.close());

    Handle check;
    ASSERT_EQ(st::Ok, check.open(file));
    EXPECT_EQ(402u, check.count());
    EXPECT_EQ(402u, check.readAll().size());
}

}  // namespace
}  // namespace conformance
