#include "platform/Base64.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

TEST(Base64Test, EncodesAndDecodesTheStandardVectorsAndRefusesOtherText) {
    const std::pair<std::string, std::string> vectors[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {std::string("\0\xFF\xFE", 3), "AP/+"},
    };
    for (const auto& [bytes, text] : vectors) {
        EXPECT_EQ(base64Encode(bytes), text);
        EXPECT_EQ(base64Decode(text), bytes) << text;
    }

    for (const char* bad :
         {"Zg", "Zg=", "Z===", "Zm9v!", "Zm=v", "Zh==", "Zm9=", "Zg==Zg==", "Zm 9v"}) {
        EXPECT_FALSE(base64Decode(bad)) << bad;
    }
}

}  // namespace
}  // namespace tb
