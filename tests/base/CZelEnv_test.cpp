#include "foundations/base/CZelEnv.h"

#include <gtest/gtest.h>

#include "foundations/base/CZelAtom.h"
#include "port/ScratchDirectory.h"

namespace {

TEST(Env, RootsComeFromTheEnvironmentAndWhatWasHandedOutStays) {
    const ScopedVariable product("SOLVANTIS_HOME", "");
    const ScopedVariable outer("QMTHOME", "/opt/first/with/a/long/name");
    const CZelAtom *first = CZelEnv::REQMTHome();
    ASSERT_NE(nullptr, first);
    {
        const ScopedVariable inner("QMTHOME", "/opt/second");
        EXPECT_STREQ("/opt/second", CZelEnv().REHome());
        EXPECT_STREQ("/opt/first/with/a/long/name", first->RAString());
    }
    EXPECT_EQ(first, CZelEnv::REQMTHome());
    EXPECT_EQ(nullptr, CZelEnv::REZelHome());
    const ScopedVariable unset("QMTHOME", nullptr);
    EXPECT_EQ(nullptr, CZelEnv::REQMTHome());
    EXPECT_EQ(nullptr, CZelEnv().REHome());
}

TEST(Env, DomainIsWhatWasSetLast) {
    const CZelAtom *first = CZelEnv::REDomain("NORTH");
    EXPECT_EQ(first, CZelEnv::REDomain(nullptr));
    EXPECT_STREQ("SOUTH", CZelEnv::REDomain("SOUTH")->RAString());
    EXPECT_STREQ("SOUTH", CZelEnv::REDomain(nullptr)->RAString());
    EXPECT_STREQ("NORTH", first->RAString());
}

}  // namespace
