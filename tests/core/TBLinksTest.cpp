#include <string>

#include "core/TBLinks.h"

#include <gtest/gtest.h>

namespace tb {
namespace {

struct LinkIdCase {
    const char* id;
    bool taken;
};

class TBLinksIdTest : public ::testing::TestWithParam<LinkIdCase> {};

// A link's id is a slug or "uploader/slug"; anything that could name another place is refused.
TEST_P(TBLinksIdTest, TakesSlugsAndRefusesWhatCouldNameAnotherPlace) {
    EXPECT_EQ(TBLinks::isLinkId(GetParam().id), GetParam().taken) << GetParam().id;
}

INSTANTIATE_TEST_SUITE_P(Ids,
                         TBLinksIdTest,
                         ::testing::Values(LinkIdCase{"", true},
                                           LinkIdCase{"12345", true},
                                           LinkIdCase{"artist-slug/title-slug", true},
                                           LinkIdCase{"a.b", true},
                                           LinkIdCase{"../../etc/passwd", false},
                                           LinkIdCase{"..", false},
                                           LinkIdCase{"a..b", false},
                                           LinkIdCase{".", false},
                                           LinkIdCase{"artist/.", false},
                                           LinkIdCase{"/etc", false},
                                           LinkIdCase{"artist/", false},
                                           LinkIdCase{"artist//title", false},
                                           LinkIdCase{"a/b/c", false}));

}  // namespace
}  // namespace tb
