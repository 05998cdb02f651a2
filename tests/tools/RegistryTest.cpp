// Every record-file class of the library has its layout in the utility's registry.
#include "tools/LayoutRegistry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

const char* const kSubsystems[] = {"core", "estimating", "catalogue", "pricing", "labor", "production", "purchasing"};

TEST(LayoutRegistry, HoldsEveryTraitsHeaderAndEverySpecOfTheLibrary) {
    std::set<std::string> headers, traits;
    for (const tool::Layout& layout : tool::Layouts()) {
        headers.insert(layout.traitsHeader);
        traits.insert(layout.traitsName);
    }
    size_t headerCount = 0, specCount = 0;
    const std::regex makeSpec(R"(REMakeSpec<\s*(\w+)\s*,)");
    for (const char* subsystem : kSubsystems) {
        for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(TARSEL_SOURCE_DIR) / subsystem)) {
            const std::string name = entry.path().filename().string();
            if (name.size() > 8 && name.ends_with("Traits.h")) {
                ++headerCount;
                EXPECT_TRUE(headers.count(std::string(subsystem) + "/" + name)) << subsystem << "/" << name;
            }
            if (!name.ends_with(".cpp"))
                continue;
            std::ifstream in(entry.path());
            std::stringstream text;
            text << in.rdbuf();
            const std::string source = text.str();
            for (std::sregex_iterator m(source.begin(), source.end(), makeSpec), end; m != end; ++m) {
                ++specCount;
                EXPECT_TRUE(traits.count((*m)[1].str())) << (*m)[1].str() << " in " << name;
            }
        }
    }
    EXPECT_GE(headerCount, 25u);
    EXPECT_GE(specCount, 30u);
}

TEST(LayoutRegistry, NamesAreUniqueAndEveryLayoutHasAFieldTableOfItsLength) {
    std::set<std::string> names;
    for (const tool::Layout& layout : tool::Layouts()) {
        EXPECT_TRUE(names.insert(layout.name).second) << layout.name;
        ASSERT_NE(layout.spec.fields, nullptr) << layout.name;
        EXPECT_EQ(layout.spec.fields->newSize, layout.spec.newSize) << layout.name;
        EXPECT_EQ(tool::FindLayout(layout.name), &layout);
    }
    EXPECT_EQ(tool::FindLayout("JOB ITEMS"), tool::FindLayout("job items"));
    EXPECT_EQ(tool::FindLayout("no such layout"), nullptr);
}

}  // namespace
