#include "foundations/port/CZelError.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelOutOfMemory.h"

namespace {

std::string printed(int code, const char *text) {
    testing::internal::CaptureStderr();
    const CZelError report(code, "Source.cpp", 7, text);
    return testing::internal::GetCapturedStderr();
}

struct Seen {
    std::vector<int> codes;
    std::string lastText;
};

void see(int code, const char *, int, const char *text, void *arg) {
    auto *seen = static_cast<Seen *>(arg);
    seen->codes.push_back(code);
    seen->lastText = text;
    if (code == E_RCSyntax)
        ZEL_REPORT(E_RCNull, "from within the observer");
}

class ErrorTest : public testing::Test {
protected:
    void TearDown() override {
        CZelError::SetErrorReportingLevel(1);
        CZelError::SetObserver(nullptr);
    }
};

TEST_F(ErrorTest, AReportIsOneReadableLineWhateverItsText) {
    EXPECT_EQ("-220552 E_RCBadArgument\n", printed(E_RCBadArgument, nullptr));
    EXPECT_EQ("-220551 E_RCSyntax: at line 2 of: a\\nb\n", printed(E_RCSyntax, "\nat line 2 of: a\nb\r\n"));
    EXPECT_EQ("-220439 E_RCBadValue: \\x1b[2J\\x7f\xc3\xa9\n", printed(E_RCBadValue, "\x1b[2J\x7f\xc3\xa9"));
    EXPECT_EQ("-1: \xff\n", printed(-1, "\xff"));
    const std::string large(3 << 20, 'x');
    EXPECT_EQ("-220402 E_RCNull: " + large + "\n", printed(E_RCNull, large.c_str()));
}

TEST_F(ErrorTest, LevelsAddPlaceThenTimeAndThread) {
    CZelError::SetErrorReportingLevel(2);
    EXPECT_EQ("-220402 E_RCNull: gone [Source.cpp:7]\n", printed(E_RCNull, "gone"));
    CZelError::SetErrorReportingLevel(99);
    EXPECT_EQ(3, CZelError::ErrorReportingLevel());
    const std::string line = printed(E_RCNull, "gone");
    EXPECT_NE(std::string::npos, line.find("/"));
    EXPECT_NE(std::string::npos, line.find(std::to_string(getpid())));
    EXPECT_NE(std::string::npos, line.find(" -220402 E_RCNull: gone [Source.cpp:7]\n"));
    CZelError::SetErrorReportingLevel(-5);
    EXPECT_EQ(1, CZelError::ErrorReportingLevel());
}

TEST_F(ErrorTest, InnermostCaptureOfTheThreadCollectsAndSilences) {
    testing::internal::CaptureStderr();
    CZelErrorCapture outer;
    {
        CZelErrorCapture loud(false);
        EXPECT_EQ(E_RCNull, ZEL_FAIL(E_RCNull, "inner"));
        EXPECT_TRUE(loud.Holds(E_RCNull, "inner"));
        EXPECT_FALSE(loud.Holds(E_RCNull, "inne"));
    }
    std::thread([] { ZEL_REPORT(E_RCBadType, "elsewhere"); }).join();
    ZEL_REPORT(E_RCRefused, "outer\n");
    EXPECT_EQ(1U, outer.Count());
    EXPECT_EQ("outer\n", outer.LastText());
    EXPECT_EQ("CZelError_test.cpp", outer.Reports()[0].m_source);
    EXPECT_EQ("-220402 E_RCNull: inner\n-220532 E_RCBadType: elsewhere\n", testing::internal::GetCapturedStderr());
}

TEST_F(ErrorTest, ObserverSeesEveryReportButItsOwn) {
    CZelErrorCapture capture;
    Seen seen;
    Seen other;
    CZelError::SetObserver(see, &seen);
    ZEL_REPORT(E_RCSyntax, "first\n");
    ZEL_REPORT(E_RCNull, nullptr);
    EXPECT_EQ((std::vector<int>{E_RCSyntax, E_RCNull}), seen.codes);
    EXPECT_EQ("", seen.lastText);
    EXPECT_TRUE(capture.Holds(E_RCNull, "from within the observer"));
    const SZelErrorObserver former = CZelError::SetObserver(see, &other);
    EXPECT_EQ(&seen, former.m_arg);
    EXPECT_EQ(see, former.m_call);
}

TEST_F(ErrorTest, LinesOfManyThreadsStayWholeAndAllAreCounted) {
    const unsigned long before = CZelError::ReportCount();
    testing::internal::CaptureStderr();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round)
                ZEL_REPORT(E_RCNull, "a line of some length, which must not be torn");
        });
    for (std::thread &thread : threads)
        thread.join();
    std::istringstream lines(testing::internal::GetCapturedStderr());
    std::string line;
    int count = 0;
    for (; std::getline(lines, line); ++count)
        ASSERT_EQ("-220402 E_RCNull: a line of some length, which must not be torn", line);
    EXPECT_EQ(400, count);
    EXPECT_EQ(before + 400, CZelError::ReportCount());
}

TEST_F(ErrorTest, LogHandleGetsCapturedReportsToo) {
    int ends[2];
    ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
    const int former = CZelError::SetLogHandle(ends[1]);
    {
        const CZelErrorCapture capture;
        ZEL_REPORT(E_RCNull, "logged");
    }
    EXPECT_EQ(ends[1], CZelError::SetLogHandle(former));
    char text[256] = {};
    EXPECT_LT(0, read(ends[0], text, sizeof text - 1));
    EXPECT_NE(nullptr, std::strstr(text, "-220402 E_RCNull: logged"));
    close(ends[0]);
    close(ends[1]);
}

// Standard error whose reader has gone, with the default action for the signal.
int reportIntoAClosedPipe() {
    std::signal(SIGPIPE, SIG_DFL);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
        return 2;
    close(ends[0]);
    ZEL_REPORT(E_RCNull, "nobody listens");
    return 0;
}

TEST(ErrorDeathTest, AClosedStandardErrorDoesNotEndTheProcess) {
    EXPECT_EXIT(_exit(reportIntoAClosedPipe()), testing::ExitedWithCode(0), "");
}

TEST(ErrorDeathTest, OutOfMemoryIsReportedOnceAndEndsInOrder) {
    EXPECT_EXIT(ZelOutOfMemory(), testing::ExitedWithCode(1), "^-220553 E_RCNoMemory: [^\n]*\n$");
}

TEST(Codes, EachCodeHasItsNameAndItsOwnNumber) {
    std::ifstream header(QUINTOR_SOURCE_DIR "/src/foundations/port/ZelCodes.h");
    std::string word;
    int found = 0;
    while (header >> word) {
        if (word.rfind("E_RC", 0) != 0)
            continue;
        std::string equals;
        int code = 0;
        header >> equals >> code;
        const char *name = ZelCodeName(code);
        ASSERT_NE(nullptr, name) << word;
        EXPECT_EQ(word, name);
        ++found;
    }
    EXPECT_LT(40, found);
    EXPECT_EQ(nullptr, ZelCodeName(0));
}

}  // namespace
