#include "programs/oql/CZelShellOptions.h"

#include <gtest/gtest.h>

namespace {

struct Reading {
    CZelShellOptions options;
    bool good;
};

Reading read(std::vector<std::string> words) {
    words.insert(words.begin(), "oql");
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    Reading reading;
    reading.good = reading.options.Read(static_cast<int>(argv.size()), argv.data());
    return reading;
}

TEST(ShellOptionsTest, InputsKeepTheOrderGiven) {
    CZelShellOptions options = read({"-f", "one", "-c", "show;", "--f", "-"}).options;
    ASSERT_EQ(3U, options.m_inputs.size());
    EXPECT_EQ(SZelShellInput::FILE, options.m_inputs[0].m_kind);
    EXPECT_EQ("show;", options.m_inputs[1].m_value);
    EXPECT_EQ(SZelShellInput::TEXT, options.m_inputs[1].m_kind);
    EXPECT_EQ("-", options.m_inputs[2].m_value);
}

TEST(ShellOptionsTest, TakesEveryOptionInBothSpellings) {
    CZelShellOptions options =
        read({"--schema", "a", "-schema", "b", "-format", "json", "-output", "o", "-bail", "--echo", "-debug", "2"})
            .options;
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), options.m_schemas);
    EXPECT_EQ(EZelFormat::JSON, options.m_format);
    EXPECT_EQ("o", options.m_output);
    EXPECT_TRUE(options.m_bail && options.m_echo);
    EXPECT_EQ(2, options.m_debug);
}

TEST(ShellOptionsTest, RefusesWhatIsNoCommandLine) {
    EXPECT_FALSE(read({"what"}).good);
    EXPECT_FALSE(read({"-Format", "json"}).good);
    EXPECT_FALSE(read({"---c", "x"}).good);
    EXPECT_FALSE(read({"-c"}).good);
    EXPECT_FALSE(read({"-format", "xml"}).good);
    EXPECT_FALSE(read({"-debug", "5"}).good);
    EXPECT_FALSE(read({"-debug", "1x"}).good);
    EXPECT_EQ("unknown option what", read({"what"}).options.m_problem);
}

TEST(ShellOptionsTest, UsageNamesEveryOption) {
    std::string usage = CZelShellOptions::Usage();
    for (const char *name :
         {"-schema", "-c", "-f", "-format", "-output", "-bail", "-echo", "-debug", "-help", "-version"})
        EXPECT_NE(std::string::npos, usage.find(name)) << name;
}

}  // namespace
