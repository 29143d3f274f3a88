#include "frame/CZelCmdLineArgs.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundations/base/CZelAtom.h"
#include "foundations/base/CZelDoubleList.h"
#include "foundations/base/CZelHashStore.h"
#include "foundations/base/ZelMalloc.h"
#include "foundations/port/CZelErrorCapture.h"
#include "foundations/port/ZelCodes.h"
#include "port/ScratchDirectory.h"

namespace {

constexpr SZelCLArgRec TABLE[] = {
    {"-domain", "domain of the process", E_RDTText, E_RBTrue, E_RBTrue},
    {"-debug", "debug level", E_RDTInt, E_RBTrue, E_RBFalse},
    {"-help", "this text", E_RDTInt, E_RBFalse, E_RBFalse},
    {"-odd", nullptr, E_RDTFloat, E_RBTrue, E_RBFalse},
};

// A command line whose program is "server", and the file of stored options beside it.
class CmdLineArgsTest : public testing::Test {
protected:
    void parse(std::vector<std::string> words, const char *tail = nullptr) {
        m_words = std::move(words);
        m_words.insert(m_words.begin(), "server");
        std::vector<char *> argv;
        for (std::string &word : m_words)
            argv.push_back(word.data());
        m_args = std::make_unique<CZelCmdLineArgs>(static_cast<int>(argv.size()), argv.data(), TABLE, 4, tail, nullptr);
    }
    void store(const std::string &lines) { m_directory.Write("registry.ini", lines); }

    std::string valueOf(const char *option) {
        CZelHashNode *node = m_args->RCLAFindArgs(nullptr)->RHSRetrieveObject(option);
        if (node == nullptr)
            return "absent";
        const CZelAtom *value = static_cast<CZelCLArg *>(node->RHNGetObject())->RCLAArgVal();
        if (value == nullptr)
            return "no value";
        const CZelMallocText text(value->RAStrRep());
        return std::string(CZelAtom::RAGetDataTypeString(value->RAType())) + " " + text.get();
    }
    std::string usage() const { return CZelMallocText(m_args->RCLAGetUsage()).get(); }

    ScratchDirectory m_directory;
    ScopedVariable m_registry{"QMT_REGISTRY", m_directory.Path("registry.ini").c_str()};
    std::vector<std::string> m_words;
    CZelErrorCapture m_reports;
    std::unique_ptr<CZelCmdLineArgs> m_args;
};

TEST_F(CmdLineArgsTest, OptionsGetTypedValuesAndUnknownWordsArePassedOver) {
    parse({"-debug", "3", "word", "", "-other", "-Help", "-help", "-help", "-domain", "-debug"});
    EXPECT_EQ("int 3", valueOf("-debug"));
    EXPECT_EQ("int 1", valueOf("-help"));
    EXPECT_EQ("text -debug", valueOf("-domain"));
    EXPECT_EQ("absent", valueOf("-other"));
    EXPECT_EQ(0U, m_reports.Count());
}

TEST_F(CmdLineArgsTest, BadValuesAreReportedAndTheWalkGoesOn) {
    parse({"-debug", "3x", "-odd", "1.5", "-domain"});
    testing::internal::CaptureStderr();
    EXPECT_EQ("text 3x", valueOf("-debug"));
    EXPECT_EQ("Parameter -domain requires argument\n", testing::internal::GetCapturedStderr());
    EXPECT_EQ("no value", valueOf("-odd"));
    EXPECT_EQ("absent", valueOf("-domain"));
    EXPECT_TRUE(m_reports.Holds(E_RCMalformed, "Command line argument 3x is not of the required integer type.\n"));
    EXPECT_TRUE(m_reports.Holds(E_RCBadOptionType));
    EXPECT_TRUE(m_reports.Holds(E_RCBadOption));
    EXPECT_EQ(3U, m_reports.Count());
}

TEST_F(CmdLineArgsTest, TheFirstOfTwoValuesStands) {
    parse({"-debug", "3", "-debug", "3", "-domain", "a", "-domain", "b", "-odd", "1", "-odd", "2"});
    EXPECT_EQ("int 3", valueOf("-debug"));
    EXPECT_EQ("text a", valueOf("-domain"));
    EXPECT_TRUE(m_reports.Holds(E_RCBadOption,
                                "Duplicate parameters with differing values were passed in.  Failed when adding "
                                "'-domain' with values 'a' and 'b'\n"));
    EXPECT_EQ(3U, m_reports.Count());  // with the two words of a type that no option has
}

TEST_F(CmdLineArgsTest, TheCommandLineWinsOverStoredOptions) {
    store("-debug = 4\n-help\n-domain = a\n");
    parse({"-debug", "3", "-domain", "a"});
    EXPECT_EQ("int 3", valueOf("-debug"));
    EXPECT_EQ("int 1", valueOf("-help"));
    EXPECT_TRUE(m_reports.Holds(
        E_RCOptionOverridden,
        "Duplicate parameters with differing values were passed in.  Value for '-debug' was 3 from the command line "
        "and 4 from the registry.  The command line value will take precedence.\n"));
    EXPECT_EQ(1U, m_reports.Count());
}

TEST_F(CmdLineArgsTest, MissingOptionsAreListedByTheFirstCallOnly) {
    parse({"-help"});
    CZelDoubleList missing;
    CZelDoubleList later;
    CZelHashStore *found = m_args->RCLAFindArgs(&missing);
    EXPECT_EQ(found, m_args->RCLAFindArgs(&later));
    ASSERT_EQ(1, missing.RDLLength());
    EXPECT_STREQ("-domain", static_cast<CZelCLArg *>(missing.RDLHead())->RCLAGetName());
    EXPECT_EQ(0, later.RDLLength());
    EXPECT_EQ(E_RCBadArgument, m_args->RCLACheckRequired(nullptr));
    EXPECT_TRUE(m_reports.Holds(E_RCBadArgument));
}

TEST_F(CmdLineArgsTest, UsageAlignsDescriptions) {
    parse({}, "Tail.\n");
    EXPECT_EQ(
        "Usage: server [options] ...\n"
        "  -domain         domain of the process\n"
        "  [ -debug ]      debug level\n"
        "  [ -help ]       this text\n"
        "  [ -odd ]        Tail.\n",
        usage());
    constexpr SZelCLArgRec LONG[] = {{"", "unseen", E_RDTInt, E_RBFalse, E_RBFalse},
                                     {"-no_pool_size", "long", E_RDTInt, E_RBFalse, E_RBFalse}};
    m_args->RCLAAddControls(LONG, 2);
    EXPECT_NE(std::string::npos, usage().find("\n  -domain           domain of"));
    EXPECT_NE(std::string::npos, usage().find("  [ -no_pool_size ] long\n"));
    EXPECT_EQ(std::string::npos, usage().find("unseen"));
}

TEST_F(CmdLineArgsTest, NewControlsReplaceOptionsAndResults) {
    parse({"-domain", "a", "-help"}, "Tail.\n");
    EXPECT_EQ("text a", valueOf("-domain"));
    auto *controls = new CZelDoubleList;
    controls->RDLAddToListEnd(new CZelCLArg("-help", E_RDTText, E_RBFalse, "other", E_RBTrue));
    m_args->RCLASetControls(controls);
    EXPECT_EQ("absent", valueOf("-domain"));
    EXPECT_EQ("int 1", valueOf("-help"));
    EXPECT_EQ("Usage: server [options] ...\n  -help           other\nTail.\n", usage());
    m_args->RCLASetControls(nullptr);
    EXPECT_EQ("absent", valueOf("-help"));
    EXPECT_EQ("Usage: server [options] ...\n", usage());
}

TEST(CLArg, ValuesMoveInOrAreCopied) {
    CZelCLArg arg("-a", E_RDTText, E_RBTrue, nullptr, E_RBFalse);
    auto *value = new CZelAtom("text");
    EXPECT_EQ(1, arg.RCLASetVal(value));
    EXPECT_EQ(E_RCSameValue, arg.RCLASetVal(value));
    EXPECT_EQ(1, arg.RCLASetVal(arg.RCLAArgVal()));  // a copy of the value it frees
    EXPECT_STREQ("text", arg.RCLAArgVal()->RAString());
    const std::unique_ptr<CZelCLArg> copy(static_cast<CZelCLArg *>(arg.RLTargetDeepCopy(&arg)));
    EXPECT_EQ(E_RCBadArgument, arg.RCLASetVal(static_cast<const CZelAtom *>(nullptr)));
    EXPECT_EQ(nullptr, arg.RCLAArgVal());
    EXPECT_STREQ("text", copy->RCLAArgVal()->RAString());
    EXPECT_STREQ("-a", copy->RCLAGetName());
}

}  // namespace
