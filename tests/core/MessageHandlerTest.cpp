#include "TestSupport.h"

#include "REMessageHandler.h"

#include <gtest/gtest.h>

namespace {

int g_calls = 0;
void CountingHandler(const char*, const char*, unsigned int) { ++g_calls; }

}  // namespace

TEST(MessageHandler, SetReturnsPreviousAndNullRestoresDefault) {
    REMessageHandler original = RESetMessageHandler(&CountingHandler);
    EXPECT_NE(original, nullptr);
    EXPECT_EQ(RESetMessageHandler(nullptr), &CountingHandler);
    // After null the default is back: installing again hands the default out.
    EXPECT_EQ(RESetMessageHandler(original), original);
}
