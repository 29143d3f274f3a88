// One evaluation of a condition over one table: each comparison gives a bag of rows, and the joiners combine
// the bags as sets. The tree is walked by a loop, since a text can make it as deep as it is long.
//
// Lives for the time of the evaluation, under the store lock.
#pragma once

#include <cstddef>
#include <vector>

#include "foundations/base/ZelEnums.h"

class CZelAtom;
class CZelBPlusTree;
class CZelBag;
class CZelBoolean;
class CZelCacheCondition;
class CZelDbEntity;
class CZelFilter;
class CZelTable;

class CZelFilterWalk {
public:
    // Partial: a comparison that the table can't answer does not narrow the rows.
    // `known`, if given, has the rows of each comparison of the condition.
    CZelFilterWalk(CZelTable &table, bool partial, const CZelCacheCondition *known = nullptr);

    // The rows that match, or null when the condition can't be answered; the caller's. `input`, if given, is
    // the set of rows of interest. *all: the result holds every row of the table.
    CZelBag *run(CZelFilter *filter, CZelBag *input, __boolean *all);

private:
    // What a branch gave. Open: it holds a comparison that was not answered, and gave all rows instead.
    struct Answer {
        CZelBag *bag = nullptr;
        bool all = false;
        bool open = false;
    };

    // A node that waits for one of its branches.
    struct Step {
        CZelFilter *node;
        CZelBag *input;
        Answer left;
        bool isInRight;
    };

    // A comparison that the tree of its column answers: column op value.
    struct TreeTest {
        const CZelBPlusTree *tree = nullptr;  // null when the comparison is of another kind
        CZelBoolean *boolean = nullptr;
        CZelDbEntity *column = nullptr;
        const CZelAtom *value = nullptr;
        EZelOper op = E_RONone;
        bool swapped = false;
    };

    // Roads of an And that need no second bag (CZelFilterWalk_indexed.cpp).
    TreeTest treeTestOf(const CZelFilter *node) const;
    bool answersAsRange(const CZelFilter *node, Answer &answer) const;
    bool narrows(const CZelFilter *right, Answer &left) const;
    static void keepPassing(const TreeTest &test, CZelBag *&rows);
    static void sortByColumn(const TreeTest &test, CZelBag &rows);

    bool isLeaf(const CZelFilter *node) const;
    CZelFilter *enter(CZelFilter *node, CZelBag *input);  // gives the first branch to look at
    bool turnsRight(Answer &answer, CZelFilter **next);
    CZelBag *inputOfBranch() const;

    bool isForeign(CZelBoolean &boolean) const;
    Answer answerLeaf(CZelFilter *node, CZelBag *input);
    Answer answerNode(const Step &step, Answer right);
    CZelBag *negate(const Answer &right);
    CZelBag *join(EZelAlgebraic op, Answer &left, Answer &right);
    void completeSides(CZelFilter *node, Answer &left, Answer &right);
    void reportMissingSide(CZelFilter *node, const Answer &left, const Answer &right);

    CZelTable &m_table;
    bool m_partial;
    const CZelCacheCondition *m_known;
    int m_total;  // rows of the table
    std::vector<Step> m_steps;
    int m_nots = 0;              // among the steps
    std::size_t m_reported = 0;  // bytes of text in reports so far
};
