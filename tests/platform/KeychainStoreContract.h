#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/KeychainStore.h"

#include <gtest/gtest.h>

namespace tb::test {

// What every durable keychain store must do: bytes of any value round-trip, overwrites
// and removals stick, and a new store object of the same identity sees all of it.
inline void expectDurableKeychainStore(
    const std::function<std::unique_ptr<KeychainStore>()>& open) {
    const std::string binary("\x00\xFF{\"value\":1}\n", 14);
    {
        auto store = open();
        EXPECT_TRUE(store->setData("token", "first"));
        EXPECT_TRUE(store->setData("token", "second"));
        EXPECT_TRUE(store->setData("blob", binary));
        EXPECT_TRUE(store->setData("gone", "x"));
        EXPECT_TRUE(store->removeObjectForKey("gone"));
        EXPECT_TRUE(store->removeObjectForKey("never there"));
    }
    auto reopened = open();
    EXPECT_EQ(reopened->dataForKey("token"), "second");
    EXPECT_EQ(reopened->dataForKey("blob"), binary);
    EXPECT_FALSE(reopened->dataForKey("gone"));
    auto keys = reopened->allKeys();
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys, (std::vector<std::string>{"blob", "token"}));
}

}  // namespace tb::test
