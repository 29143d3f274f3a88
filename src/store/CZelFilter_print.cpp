#include <vector>

#include "foundations/base/CZelString.h"
#include "oql/CZelFilterParser.h"
#include "store/CZelBoolean.h"
#include "store/CZelFilter.h"

namespace {

// What is left to write: a whole tree, the operator behind a left branch, or the bracket behind a right one.
struct Piece {
    enum Kind { TREE, OPERATOR, END } kind;
    CZelFilter *node;
};

// The pieces go on the stack from the last to the first.
void open(CZelFilter *node, CZelString &out, std::vector<Piece> &pieces) {
    out.RSStrCat('(');
    pieces.push_back({Piece::END, node});
    if (node->RFRight() != nullptr)
        pieces.push_back({Piece::TREE, node->RFRight()});
    pieces.push_back({Piece::OPERATOR, node});
    if (node->RFLeft() != nullptr)
        pieces.push_back({Piece::TREE, node->RFLeft()});
}

char *print(CZelFilter *root, bool resolved) {
    CZelString out;
    std::vector<Piece> pieces{{Piece::TREE, root}};
    while (!pieces.empty()) {
        const Piece piece = pieces.back();
        pieces.pop_back();
        if (piece.kind == Piece::END)
            out.RSStrCat(')');
        else if (piece.kind == Piece::OPERATOR)
            out.RSStrCat(CZelFilterParser::RFPAlgebraicToString(piece.node->RFOperator()));
        else if (piece.node->RFKernel() != nullptr)
            piece.node->RFKernel()->RBAppendPrint(out, resolved);
        else
            open(piece.node, out, pieces);
    }
    return out.RSTakeString();
}

}  // namespace

char *CZelFilter::RFPrint() {
    return print(this, false);
}

char *CZelFilter::RFPrintResolved() {
    return print(this, true);
}
