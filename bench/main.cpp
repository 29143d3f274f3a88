#include "bench/PairTable.h"
#include "bench/works.h"

int main(int argc, char **argv) {
    addMemoryMeasure();  // first, while this process has no memory to reuse
    addParseWorks();
    addInsertWorks();
    addSelectWorks();
    addChangeWorks();
    addThreadWorks();
    addJoinWorks();
    addDuckWorks();
    addCacheWorks();
    addLmdbWorks();
    addVendorWork();
    addRompWorks();
    addClauseWorks();
    addLimits();
    return runPairs(argc, argv);
}
