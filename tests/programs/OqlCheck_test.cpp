// The file checker as a program: what it prints and how it exits.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#include "port/ScratchDirectory.h"
#include "store/CZelPageFile.h"

namespace {

struct Printed {
    int exit;
    std::string output;  // both streams
};

Printed check(const std::string &arguments) {
    const std::string command = QUINTOR_PROGRAM_DIR "/oqlcheck " + arguments + " 2>&1";
    FILE *pipe = popen(command.c_str(), "r");
    Printed run{-1, ""};
    std::array<char, 4096> buffer;
    for (std::size_t count; (count = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
        run.output.append(buffer.data(), count);
    run.exit = WEXITSTATUS(pclose(pipe));
    return run;
}

bool says(const Printed &run, const std::string &text) {
    return run.output.find(text) != std::string::npos;
}

}  // namespace

TEST(OqlCheck, TellsWhatThePagesOfAFileAreUsedFor) {
    ScratchDirectory scratch;
    const std::string path = scratch.Path("records");
    {
        CZelPageFile file;
        ASSERT_EQ(1, file.open(path.c_str(), true));
        long start = 0;
        const std::string text(1000, 'x');
        for (int i = 0; i < 2; ++i)
            ASSERT_EQ(1, file.write(reinterpret_cast<const unsigned char *>(text.data()), 1000,
                                    CZelPageFile::NO_POSITION, &start));
        EXPECT_TRUE(says(check(path), "in use by process " + std::to_string(getpid())));
    }
    Printed run = check(path);
    EXPECT_EQ(0, run.exit);
    EXPECT_TRUE(says(run, "rows                2")) << run.output;
    EXPECT_TRUE(says(run, "used                6")) << run.output;
    EXPECT_TRUE(says(run, "free               44")) << run.output;
    FILE *file = fopen(path.c_str(), "r+");
    fseek(file, 512 + 100, SEEK_SET);
    fputc('y', file);
    fclose(file);
    run = check(path);
    EXPECT_EQ(1, run.exit);
    EXPECT_TRUE(says(run, "out of use          2")) << run.output;
    EXPECT_TRUE(says(run, "at byte 512\n")) << run.output;
}

TEST(OqlCheck, WhatItCanNotReadOrDoesNotKnow) {
    ScratchDirectory scratch;
    EXPECT_EQ(2, check("").exit);
    EXPECT_EQ(2, check("-nonsense").exit);
    EXPECT_EQ(0, check("--help").exit);
    EXPECT_EQ(0, check("-version").exit);
    Printed run = check(scratch.Path("none"));
    EXPECT_EQ(2, run.exit);
    EXPECT_TRUE(says(run, "No such file")) << run.output;
    run = check(scratch.Write("odd", "no pages"));
    EXPECT_EQ(2, run.exit);
    EXPECT_TRUE(says(run, "no multiple of 512")) << run.output;
    ASSERT_EQ(0, mkfifo(scratch.Path("pipe").c_str(), 0600));
    run = check(scratch.Path("pipe") + ' ' + scratch.Write("empty", ""));  // the others are looked through all the same
    EXPECT_EQ(2, run.exit);
    EXPECT_TRUE(says(run, "pipe is no plain file") && says(run, "sound")) << run.output;
}
