// Entry point of the Windows test programs. Tests that cannot work under Wine are taken out by
// name, each with its reason printed, so that a run never drops a test silently.
#include <gtest/gtest.h>

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
    return RUN_ALL_TESTS();
}
