// Clauses that are compiled already, evaluated against a record: each beside the same function in Lua, called with the
// record as a table, and in LuaJIT, called with this very record.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "bench/Lua.h"
#include "bench/LuaJit.h"
#include "bench/PairTable.h"
#include "bench/works.h"
#include "clause/CZelCmdCmplr.h"
#include "clause/CZelEvalClause.h"
#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelAtomVector.h"
#include "foundations/base/CZelRecord.h"
#include "foundations/base/CZelVarBind.h"
#include "foundations/base/ZelMalloc.h"
#include "oql/CZelAtomParser.h"
#include "store/CZelColDef.h"

namespace {

constexpr int EVALUATIONS = 200000;

const BenchPeer LUA = {"lua 5.4"};
const BenchPeer LUAJIT = {"luajit"};

// The same for both: a literal here is a table there.
constexpr const char *RECORD =
    "{Host='core-switch-17',Name='GigabitEthernet0/1/3',Port=161,In=81723,Out=9911,Load=0.25,"
    "List=%c1,2,3,4,5,6,7,8,9,10%c,Item=11}";

std::string record(char open, char close) {
    char text[512];
    std::snprintf(text, sizeof text, RECORD, open, close);
    return text;
}

// A clause with the record that it reads.
class Evaluation {
public:
    Evaluation(const char *clause, CZelColDef *type) : m_clause(type, ZelStrDup(clause)) {
        const std::unique_ptr<CZelAtom> value(CZelAtomParser().RAPParse(record('[', ']').c_str(), nullptr));
        m_record = std::make_unique<CZelRecord>(static_cast<const CZelAtom &>(*value).RAObject());
        m_compiler.RCCSetCurrentRec(m_record.get(), 0);
    }

    void evaluate() { delete m_compiler.RCCEvaluateClause(&m_clause); }

    const CZelRecord &values() const { return *m_record; }

    std::string text() {
        const std::unique_ptr<CZelAtom> value(m_compiler.RCCEvaluateClause(&m_clause));
        const std::string all = CZelMallocText(value->RAStrRep()).get();
        return value->RAType() == E_RDTList ? all.substr(1, all.size() - 2) : all;
    }

private:
    CZelEvalClause m_clause;
    std::unique_ptr<CZelRecord> m_record;
    CZelCmdCmplr m_compiler;
};

CZelColDef *type(EZelDataType of, CZelColDef *element = nullptr) {
    return new CZelColDef(nullptr, of, element, -1);
}

void requireSame(const std::string &ours, const std::string &theirs) {
    if (ours == theirs)
        return;
    std::fprintf(stderr, "clause: %s, peer: %s\n", ours.c_str(), theirs.c_str());
    std::abort();
}

template <class Step>
BenchRun repeat(Step step) {
    const double seconds = secondsOf([&] {
        for (int i = 0; i < EVALUATIONS; ++i)
            step();
    });
    return {EVALUATIONS, seconds};
}

void addLuaJit(const char *name, const std::shared_ptr<Evaluation> &ours, const char *function) {
    if (!LuaJit::isHere())
        return addPeer(name, LUAJIT, nullptr);
    const auto theirs = std::make_shared<LuaJit>(function, ours->values());
    requireSame(ours->text(), theirs->text());
    addPeer(name, LUAJIT, [ours, theirs] { return repeat([&theirs] { theirs->call(); }); });
}

// A list that LuaJIT has read from the record is a new table, which need not be copied: the function may differ there.
void add(const char *name, const char *clause, CZelColDef *type, const char *function, const char *onRecord = nullptr) {
    const auto ours = std::make_shared<Evaluation>(clause, type);
    const auto theirs = std::make_shared<Lua>(function, record('{', '}'));
    requireSame(ours->text(), theirs->text());
    addPair(
        name, "evaluation", [ours] { return repeat([&ours] { ours->evaluate(); }); },
        [theirs] { return repeat([&theirs] { theirs->call(); }); }, LUA);
    addLuaJit(name, ours, onRecord != nullptr ? onRecord : function);
}

}  // namespace

void addClauseWorks() {
    add("clause: arithmetic over three fields", "(&In + &Out) * &Load", type(E_RDTFloat),
        "function(r) return (r.In + r.Out) * r.Load end");
    add("clause: concatenation of four parts", "cat(&Host, `:`, &Name, &Port)", type(E_RDTText),
        "function(r) return r.Host .. ':' .. r.Name .. r.Port end");
    add("clause: append to a list of ten", "append(&List, &Item)", type(E_RDTList, type(E_RDTInt)),
        "function(r) local l = {unpack(r.List)}; l[#l + 1] = r.Item; return l end",
        "function(r) local l = r.List; l[#l + 1] = r.Item; return l end");
    add("clause: match of a regular expression", "regexpmatch(&Name, `([0-9]+)/1`)", type(E_RDTText),
        "function(r) return match(r.Name, '([0-9]+)/1') end");
}
