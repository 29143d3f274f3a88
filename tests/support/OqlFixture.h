// A store manager without a bus for tests: runs OQL, keeps the reports, gives rows as texts.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundations/base/ZelEnums.h"
#include "foundations/port/CZelErrorCapture.h"
#include "storemgr/CZelStoreMgr.h"

class CZelBag;
class CZelRecord;

class OqlFixture : public ::testing::Test {
protected:
    OqlFixture() : manager(static_cast<CZelEngine *>(nullptr), nullptr) {}

    // Runs a text; the status that it leaves. What it reported is in `reports`, emptied first.
    EZelStoreErrorStatus run(const char *oql, CZelRecord *current = nullptr);

    // The rows of a text, each as "name=value name=value" in the record's order.
    std::vector<std::string> rows(const char *oql, CZelRecord *current = nullptr);

    // The only value of the only row, as text; fails the test otherwise.
    std::string value(const char *oql);

    static std::string textOf(const CZelRecord &record);

    CZelStoreMgr manager;
    CZelErrorCapture reports;
};
