#include "store/CZelDbCallback.h"
#include "tests/store/TableTest.h"

namespace {

class CallbackTest : public TableTest {
protected:
    CallbackTest() {
        make({column("k", E_RDTInt, KEY), column("n", E_RDTInt), column("w", E_RDTLong), counters({"n"}),
              timestamps({"w"})});
        insert({{"k", 1}, {"n", 0}, {"w", 0L}});
        m_table->RTAddActive(&m_log, 3);
    }
    ~CallbackTest() override { m_table->RTAddActive(nullptr, 0); }

    CZelErrorCapture m_reports;
    EventLog m_log;
};

TEST_F(CallbackTest, EachOperationTellsItsEventsInOrder) {
    EXPECT_EQ(1, insert({{"k", 2}, {"n", 0}}));
    EXPECT_EQ(E_RCDuplicate, insertUnique({{"k", 2}}, {"k"}));
    EXPECT_EQ(1, update({{"k", 5}}, where("k", 2)));
    EXPECT_EQ(1, erase(where("k", 5)));
    EXPECT_EQ((Texts{"preAdd k=2 n=0", "postAdd k=2 n=0", "preDuplicate k=2 n=0", "postDuplicate k=2 n=1",
                     "prePreUpdate k=2 n=1", "preUpdate k=2 n=1", "postUpdate k=5 n=1", "preDelete k=5 n=1",
                     "postDelete k=5 n=1"}),
              m_log.events);
    EXPECT_NE(nullptr, m_log.statement);
}

TEST_F(CallbackTest, ARowThatDoesNotComeInHasNoPostEvent) {
    EXPECT_EQ(E_RCKeyExists, insert({{"k", 1}}));
    EXPECT_EQ(E_RCBadColumnValue, insert({{"k", "x"}}));
    m_log.refused = "preAdd";
    EXPECT_EQ(E_RCRefused, insert({{"k", 9}}));
    EXPECT_EQ((Texts{"preAdd k=1", "preAdd k=x", "preAdd k=9"}), m_log.events);
    EXPECT_EQ(1, m_table->RTTotalRecordCount());
}

TEST_F(CallbackTest, RefusedDeletesAndUpdatesGiveOneAndChangeNothing) {
    for (const char *event : {"preDelete", "preUpdate", "prePreUpdate"}) {
        m_log.refused = event;
        EXPECT_EQ(1, m_log.refused == "preDelete" ? erase(nullptr) : update({{"n", 9}}, nullptr));
        EXPECT_EQ(Texts{"k=1 n=0 w=0"}, rows());
    }
    EXPECT_EQ((Texts{"preDelete k=1 n=0 w=0", "prePreUpdate k=1 n=0 w=0", "preUpdate k=1 n=0 w=0",
                     "prePreUpdate k=1 n=0 w=0"}),
              m_log.events);
}

class QuietDbCallback : public CZelDbCallback {};

TEST_F(CallbackTest, ADatabaseKeepsItsFirstCallbackUnlessThatGivesWay) {
    struct Yielding : CZelDbCallback {
        __boolean RDCCallbackOverridden(CZelDatabase *, CZelDbCallback *) override { return E_RBTrue; }
    } yielding;
    QuietDbCallback quiet, late;
    CZelDatabase database(ZelStrDup("x"));
    database.RDSetDbCallback(&yielding);
    database.RDSetDbCallback(&quiet);
    EXPECT_EQ(&quiet, database.RDDbCallback());
    database.RDSetDbCallback(&late);
    EXPECT_EQ(&quiet, database.RDDbCallback());
    EXPECT_TRUE(m_reports.Holds(E_RCBadState, "Can not overriden default callback"));
    EXPECT_EQ(E_RBTrue, quiet.RDCPreAddTable(&database, m_table));
    EXPECT_EQ(E_RBTrue, quiet.RDCPreDropTable(&database, m_table));
}

}  // namespace
