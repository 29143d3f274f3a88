// What the machine takes for the steps that every store is made of: no work of either side can be faster than those it
// needs.
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "bench/PairTable.h"
#include "bench/works.h"
#include "foundations/base/ZelCrc32c.h"
#include "foundations/port/ZelInParts.h"

namespace {

constexpr std::size_t LINE = 64;                     // bytes of a line of the caches
constexpr std::size_t LINES = (256UL << 20) / LINE;  // far more than caches hold
constexpr int STEPS = 1000000;
constexpr int CALLS = 100000;
constexpr int BLOCKS = 10000;
constexpr std::size_t OUR_PAGE = 512;
constexpr std::size_t PAGE = 4096;  // of the peers
constexpr unsigned PAGES = 16384;
constexpr int PAGE_READS = 20000;
constexpr std::size_t BLOCK = 262144;

struct alignas(LINE) Line {
    std::uint32_t next;
    std::uint32_t number;
};

// One cycle through all lines, in random order.
std::vector<Line> &lines() {
    static std::vector<Line> all = [] {
        std::vector<Line> made(LINES);
        std::vector<std::uint32_t> order(LINES);
        std::iota(order.begin(), order.end(), 0U);
        std::shuffle(order.begin(), order.end(), std::mt19937(29));
        for (std::size_t i = 0; i < LINES; ++i)
            made[order[i]] = {order[(i + 1) % LINES], order[i]};
        return made;
    }();
    return all;
}

// Tells the compiler that the value is used.
template <class Value>
void keep(Value value) {
    asm volatile("" : : "r"(value) : "memory");
}

BenchRun scanMemory() {
    const std::vector<Line> &all = lines();
    std::uint64_t sum = 0;
    const double seconds = secondsOf([&] {
        for (const Line &line : all)
            sum += line.number;
        keep(sum);
    });
    return {static_cast<long>(LINES), seconds};
}

BenchRun chaseLines() {
    const std::vector<Line> &all = lines();
    return {STEPS, secondsOf([&] {
                std::uint32_t at = 0;
                for (int i = 0; i < STEPS; ++i)
                    at = all[at].next;
                keep(at);
            })};
}

// Where the next line doesn't depend on the one before, the machine waits for many at once.
BenchRun gatherLines() {
    const std::vector<Line> &all = lines();
    return {STEPS, secondsOf([&] {
                std::uint64_t sum = 0;
                for (std::uint32_t i = 0; i < STEPS; ++i)
                    sum += all[i * 2654435761U % LINES].number;
                keep(sum);
            })};
}

BenchRun allocate() {
    std::vector<void *> blocks(BLOCKS);
    const double seconds = secondsOf([&] {
        for (void *&block : blocks)
            block = std::malloc(LINE);
        keep(blocks.data());
        for (void *block : blocks)
            std::free(block);
    });
    return {BLOCKS, seconds};
}

BenchRun callKernel() {
    return {CALLS, secondsOf([] {
                for (int i = 0; i < CALLS; ++i)
                    keep(syscall(SYS_getppid));
            })};
}

// A file of PAGES pages that the kernel holds in memory; it has no name.
int pageFile() {
    static const int file = [] {
        std::string path = (std::filesystem::temp_directory_path() / "quintor-pages-XXXXXX").string();
        const int opened = mkstemp(path.data());
        unlink(path.c_str());
        const std::vector<char> page(PAGE, 'x');
        for (unsigned i = 0; i < PAGES; ++i)
            if (write(opened, page.data(), PAGE) != static_cast<ssize_t>(PAGE))
                std::exit(1);
        return opened;
    }();
    return file;
}

BenchRun readPages(std::size_t size) {
    const int file = pageFile();
    char page[PAGE];
    return {PAGE_READS, secondsOf([&] {
                for (unsigned i = 0; i < PAGE_READS; ++i)
                    if (pread(file, page, size, static_cast<off_t>(i * 2654435761U % PAGES * PAGE)) < 0)
                        std::exit(1);
            })};
}

void readBlocks(int file, std::size_t first, std::size_t end) {
    std::vector<char> block(BLOCK);
    for (std::size_t number = first; number < end; ++number)
        if (pread(file, block.data(), BLOCK, static_cast<off_t>(number * BLOCK)) < 0)
            std::exit(1);
}

// The whole file from front to back, in so many parts at the same time.
BenchRun readInOrder(std::size_t parts) {
    constexpr std::size_t BLOCKS_OF_FILE = PAGES * PAGE / BLOCK;
    const int file = pageFile();
    return {static_cast<long>(PAGES * PAGE / OUR_PAGE), secondsOf([&] {
                ZelInParts(parts, [&](std::size_t part) {
                    readBlocks(file, ZelBeginOfPart(BLOCKS_OF_FILE, part, parts),
                               ZelBeginOfPart(BLOCKS_OF_FILE, part + 1, parts));
                });
            })};
}

BenchRun checkPages(std::size_t size) {
    const std::vector<char> page(size, 'x');
    return {PAGE_READS, secondsOf([&] {
                for (int i = 0; i < PAGE_READS; ++i)
                    keep(ZelCrc32c(page.data(), size));
            })};
}

}  // namespace

void addLimits() {
    addLimit("memory in order", "64 bytes", scanMemory);
    addLimit("memory at random, each place told by the one before", "64 bytes", chaseLines);
    addLimit("memory at random, places known ahead", "64 bytes", gatherLines);
    addLimit("malloc and free, 10,000 at once", "64 bytes", allocate);
    addLimit("system call", "call", callKernel);
    for (const std::size_t size : {OUR_PAGE, PAGE}) {
        const std::string of = " of " + std::to_string(size) + " bytes";
        addLimit("read" + of + " that the kernel holds", "page", [size] { return readPages(size); });
        addLimit("CRC32C" + of, "page", [size] { return checkPages(size); });
    }
    const std::string inOrder = "read of 512 bytes in order, in large blocks";
    addLimit(inOrder, "page", [] { return readInOrder(1); });
    addLimit(inOrder + ", in parts", "page", [] { return readInOrder(ZelPartsFor(PAGES, 1)); });
}
