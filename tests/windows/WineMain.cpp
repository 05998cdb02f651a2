// Entry point of the Windows test programs. Tests that cannot work under Wine are taken out by
// name, each with its reason printed, so that a run never drops a test silently.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

struct Skip {
    const char* test;  // full name, Suite.Test
    const char* reason;
};

const Skip kSkips[] = {
#include "WineSkips.inc"
};

// Gives every test a temporary folder of its own, named in 8.3 form. Wine makes up the short name
// of a long one from its first four letters and a three-letter hash, and resolves it to the first
// entry that matches: among the many long-named test folders a temporary folder collects
// (those holding a file the process keeps open cannot be removed until it ends), two sooner or
// later share a short name, and a path through the short form then reaches the wrong folder.
class TestTempFolders : public testing::EmptyTestEventListener {
public:
    TestTempFolders() {
        char base[MAX_PATH + 1] = {0};
        const DWORD length = ::GetTempPathA(sizeof base, base);
        if (length > 0 && length < sizeof base)
            m_base = std::string(base, length) + "TS" + std::to_string(::GetCurrentProcessId());
    }

    void OnTestStart(const testing::TestInfo&) override {
        if (m_base.empty())
            return;
        ::CreateDirectoryA(m_base.c_str(), nullptr);
        std::string folder;
        for (;;) {
            folder = m_base + "\\" + std::to_string(++m_count);
            if (::CreateDirectoryA(folder.c_str(), nullptr))
                break;
            if (::GetLastError() != ERROR_ALREADY_EXISTS)
                return;  // the test keeps the folder it had
        }
        ::SetEnvironmentVariableA("TMP", folder.c_str());
        ::SetEnvironmentVariableA("TEMP", folder.c_str());
        m_folder = folder;
    }

    // Goes when the test removed what it made; otherwise run-wine.sh clears it before the next program.
    void OnTestEnd(const testing::TestInfo&) override {
        if (!m_folder.empty())
            ::RemoveDirectoryA(m_folder.c_str());
        m_folder.clear();
    }

private:
    std::string m_base;
    std::string m_folder;
    unsigned m_count = 0;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::string excluded;
    const testing::UnitTest& unit = *testing::UnitTest::GetInstance();
    for (const Skip& skip : kSkips) {
        for (int i = 0; i < unit.total_test_suite_count(); ++i) {
            const testing::TestSuite& suite = *unit.GetTestSuite(i);
            for (int j = 0; j < suite.total_test_count(); ++j) {
                const std::string name = std::string(suite.name()) + "." + suite.GetTestInfo(j)->name();
                if (name != skip.test)
                    continue;
                std::printf("[  SKIPPED ] %s: %s\n", skip.test, skip.reason);
                excluded += ":" + name;
            }
        }
    }
    if (!excluded.empty()) {
        std::string filter = GTEST_FLAG_GET(filter);
        filter += filter.find('-') == std::string::npos ? "-" + excluded.substr(1) : excluded;
        GTEST_FLAG_SET(filter, filter);
    }
    testing::UnitTest::GetInstance()->listeners().Append(new TestTempFolders);
    return RUN_ALL_TESTS();
}
