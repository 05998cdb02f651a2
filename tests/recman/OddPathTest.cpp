// Paths that name no regular file: Create and Open answer at once, without opening them (an open
// of a FIFO would wait for a writer forever). And Create in replace mode swaps the file whole: an
// Open racing it reaches the old file or the new one, never a missing or half-made file.
#include "ConformanceFixture.h"

#include <atomic>
#include <thread>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace conformance {
namespace {

class OddPath : public Conformance {};

TEST_F(OddPath, AFifoIsRefusedWithoutBeingOpened) {
    const std::string fifo = path("fifo.dat");
    ASSERT_EQ(0, ::mkfifo(fifo.c_str(), 0600));
    // Each call would block for good if it opened the FIFO; the test would time out.
    EXPECT_EQ(st::NoFile, Handle().open(fifo));
    EXPECT_EQ(st::NoFile, Handle().open(fifo, -2));
    EXPECT_EQ(st::CannotCreate, create(fifo, twoKeyFile()));
    EXPECT_EQ(st::CannotCreate, create(fifo, twoKeyFile(), -1));
    struct stat st {};
    ASSERT_EQ(0, ::stat(fifo.c_str(), &st));
    EXPECT_TRUE(S_ISFIFO(st.st_mode)) << "the FIFO is left as it was";
}

TEST_F(OddPath, DevicesAndSocketsAreNoFiles) {
    EXPECT_EQ(st::NoFile, Handle().open("/dev/null"));
    EXPECT_EQ(st::NoFile, Handle().open("/dev/zero", -2));

    const std::string sock = path("s");
    int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(fd, 0);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    ASSERT_LT(sock.size(), sizeof addr.sun_path);
    std::memcpy(addr.sun_path, sock.c_str(), sock.size() + 1);
    ASSERT_EQ(0, ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr));
    EXPECT_EQ(st::NoFile, Handle().open(sock));
    EXPECT_EQ(st::CannotCreate, create(sock, twoKeyFile()));
    ::close(fd);
}

// Two layouts told apart by Stat's record length; a replacer swaps them while a user opens,
// writes and walks.
TEST_F(OddPath, OpensRacingAReplaceSeeTheOldFileOrTheNewOne) {
    const FileLayout small = twoKeyFile();
    FileLayout large = twoKeyFile();
    large.recordLength = 32;
    const std::string file = makeFile(small);

    constexpr int kReplaces = 80;
    std::atomic<bool> done{false};
    std::atomic<int> replaced{0};
    std::thread replacer([&] {
        for (int i = 0; i < kReplaces; ++i) {
            int16_t status = create(file, i % 2 ? small : large);
            if (status == st::Ok)
                ++replaced;
            else if (status != st::CannotCreate)  // an opener had it open at that moment
                ADD_FAILURE() << "replace answered " << status;
        }
        done = true;
    });
    int opens = 0;
    while (!done) {
        Handle h;
        int16_t status = h.open(file);
        if (status != st::Ok) {
            ADD_FAILURE() << "open answered " << status;
            break;
        }
        // Whichever file it reached, it is whole and its own: a record of its length goes in,
        // and every walk agrees with the count.
        Bytes stat;
        ASSERT_EQ(st::Ok, h.stat(stat));
        uint16_t length = uint16_t(readLe(stat.data(), 2));
        ASSERT_TRUE(length == 16 || length == 32) << length;
        ASSERT_EQ(st::Ok, h.insert(record(length, {{4, int32Key(opens)}})));
        uint32_t count = h.count();
        EXPECT_EQ(count, h.readAll().size());
        EXPECT_EQ(count, h.stepAll().size());
        for (const Bytes& r : h.stepAll())
            EXPECT_EQ(length, r.size());
        ++opens;
    }
    replacer.join();
    EXPECT_GT(replaced.load(), 0);
    EXPECT_GT(opens, 0);
}

}  // namespace
}  // namespace conformance
