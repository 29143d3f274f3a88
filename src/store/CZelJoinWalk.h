// The walk of a joined query: for each row of the first table the rows of the next one that its values leave
// possible, and so on down the list; the rows that stand together at its end are the result.
//
// It gives exactly what copying the condition, writing a tuple's values into the copy and asking the next table would
// give, row by row of every table, with the finished tuple tested against the whole condition at the end; but a part
// of the condition is tested as soon as its tables are decided, once, and a tuple is made when it is in the result.
// A table without a possible row does not end a branch: the walk goes on without a record of it, and its columns have
// no value.
//
// Rows that have come as far as a table wait for each other, and go on together, in their order: then their keys are
// looked up at once. Where a table has to answer for itself each row goes on alone, to its end.
//
// Where all tables are plain and the first one is long, its rows are shared by two threads, each with a walk of its
// own.
//
// Lives for the time of one query, under the store lock; the rows of cached tables are copies, see `copies`.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "foundations/base/CZelBPlusTree.h"
#include "store/CZelBoundFilter.h"
#include "store/CZelJoinBlock.h"
#include "store/CZelJoinCondition.h"
#include "store/CZelJoinRow.h"
#include "store/CZelTuple.h"

class CZelBTreeNode;
class CZelBag;
class CZelDoubleList;
class CZelJoinTaker;
class CZelPointer;
class CZelRecord;
class CZelTable;
class CZelTreeList;
struct SZelListRun;

class CZelJoinWalk {
public:
    static constexpr int MOST_TABLES = 16;
    static constexpr std::size_t TOGETHER = 64;

    // Over `tables` (CZelPointer to CZelTable) behind `position`, or all; `tuple` holds what was joined before, or is
    // null. `copies` takes the rows of cached tables by address. `together`: so many rows may wait for each other.
    CZelJoinWalk(CZelTable &driver, CZelFilter *filter, CZelDoubleList &tables, CZelPointer *position,
                 const CZelTuple *tuple, CZelTreeList &copies, std::size_t together = TOGETHER);
    CZelJoinWalk(const CZelJoinWalk &) = delete;
    CZelJoinWalk &operator=(const CZelJoinWalk &) = delete;
    ~CZelJoinWalk();

    void run(CZelJoinTaker &taker);
    std::size_t count();  // the number of rows alone

private:
    using Terms = std::vector<const CZelJoinCondition::Term *>;

    // A term `column of this table = key`.
    struct Lookup {
        const CZelJoinCondition::Term *m_term = nullptr;  // null: there is none
        const CZelJoinTest::Side *m_column = nullptr;
        const CZelJoinTest::Side *m_key = nullptr;
        const CZelBPlusTree *m_tree = nullptr;  // of the column; null without an index
    };

    // The rows of a table that pass its own terms, and a tree of them: found when first needed, once for all threads.
    struct Candidates {
        std::once_flag m_areCollected;
        std::vector<CZelRecord *> m_rows;
        std::once_flag m_areSorted;
        std::unique_ptr<CZelBPlusTree> m_tree;  // null: a value is of a kind that trees order in their own way
    };

    struct Level {
        CZelTable *m_table = nullptr;
        int m_place = 0;
        bool m_isPlanned = false;  // can be walked by the terms below
        Terms m_decided;           // all terms that are decided here
        Terms m_own;               // of them: say by this table's columns alone which rows are possible
        Terms m_narrowing;         // of them: say it with columns of earlier tables, m_lookup's term apart
        Terms m_refusing;          // of them: refuse a row that is possible all the same
        Lookup m_constant;         // by a constant, over an index
        Lookup m_lookup;           // by a column of an earlier table, over an index
        Lookup m_wanted;           // the same without an index

        unsigned int m_visits = 0;
        std::shared_ptr<Candidates> m_candidates = std::make_shared<Candidates>();
        const CZelBPlusTree *m_made = nullptr;  // of the candidates, for m_wanted

        // Of the rows that go on together: their keys, what the tree has of them, and which row is at work.
        std::vector<const CZelAtom *> m_keys;
        std::vector<CZelBTreeNode *> m_entries;
        bool m_isLookedUp = false;
        std::size_t m_current = 0;

        bool testsRows() const { return !m_own.empty() || !m_narrowing.empty() || !m_refusing.empty(); }
    };

    // For rows of the first table that another thread finds. Requires: `whole`, which outlives this, has not been
    // walked.
    explicit CZelJoinWalk(const CZelJoinWalk *whole);

    // Making ready.
    void addLevels(CZelDoubleList &tables, CZelPointer *position);
    void addLevel(CZelTable &table);
    void bring(const CZelTuple &tuple);
    void orderPlaces();
    void planLevel(int index);
    void planTerm(int index, const CZelJoinCondition::Term &term);
    void chooseLookups(Level &level);
    Lookup lookupOf(const Level &level, const CZelJoinCondition::Term &term) const;
    static const CZelBPlusTree *treeOf(const Level &level, const CZelJoinTest::Side &column);
    void makeBlocks(std::size_t together);

    void start();
    const CZelDoubleList *sharedRows() const;  // of the first table; null where one thread does all
    bool walkShared(const CZelDoubleList &rows);
    void walkRun(const CZelDoubleList &rows, const SZelListRun &run);

    // The row in progress goes on to a level, at once or with others.
    void walk();
    void finish(int index);
    void descend(int index);
    void advance(int index);
    void lookUp(Level &level, const CZelJoinBlock &block);
    void readKeys(Level &level, const CZelJoinBlock &block) const;
    static void askForRows(const Level &level);
    void take(const CZelJoinBlock &block);
    void addTuple(CZelRecord *const *records);

    // The rows of one level for the row in progress. The visits tell whether there was a possible one.
    void enter(int index);
    bool visit(int index);
    bool visitAll(int index);
    bool visitPlanned(int index);
    bool visitAnswered(int index);
    bool visitRows(int index, CZelBag *rows);
    const CZelBTreeNode *entryFor(const Level &level, const CZelBPlusTree &tree, const Lookup &lookup) const;
    bool visitEntry(int index, const CZelBTreeNode *entry, const Terms *own);
    bool visitPossible(int index, CZelRecord *row, const Terms *own);
    void visitChosen(int index, CZelRecord *row, const Terms &terms);
    bool passes(const Terms &terms) const;
    const std::vector<CZelRecord *> &candidatesOf(Level &level);
    void collectCandidates(Level &level);
    void collectCandidate(Level &level, CZelRecord *row);
    static bool isWorthATree(const Level &level);
    static void makeTree(Level &level);
    static std::unique_ptr<CZelBPlusTree> treeOver(const Level &level);
    static bool isTreeKey(const CZelAtom *value);

    CZelTreeList &m_copies;
    CZelJoinTaker *m_taker = nullptr;  // null: only counts
    std::size_t m_found = 0;
    CZelJoinRow m_row;
    std::vector<Level> m_levels;
    std::vector<CZelJoinBlock> m_blocks;  // in front of each level, and behind the last
    int m_brought = 0;                    // places that have a record from the beginning
    bool m_isDistinct = true;             // no table stands twice
    std::shared_ptr<const CZelJoinCondition> m_condition;
    std::vector<std::unique_ptr<CZelBoundFilter>> m_bounds;  // by level, made when first needed
    std::vector<int> m_order;                                // places in the order of identifiers
    std::vector<SZelTupleEntry> m_entries;                   // of the tuple in the making
    std::vector<CZelTuple> m_tuples;                         // of the rows that are taken together
};
