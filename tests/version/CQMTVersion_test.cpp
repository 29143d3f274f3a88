#include "foundations/version/CQMTVersion.h"

#include <gtest/gtest.h>

namespace {

TEST(Version, ProgramIsUnknownUntilItStampsItself) {
    CQMTVersion &version = CQMTVersion::Instance();
    EXPECT_LE(1, version.System().m_Major);
    EXPECT_EQ(-1, version.SubSystem().m_Major);
    EXPECT_EQ("unknown", version.SubSystem().AsString());
    version.SetSubSystem({2, 0, 13, "nightly"});
    EXPECT_EQ("2.0.13", version.SubSystem().AsString());
    EXPECT_EQ("nightly", version.SubSystem().m_Extra);
    version.SetSubSystem({});
}

}  // namespace
