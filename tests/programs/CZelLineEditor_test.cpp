#include "programs/oql/CZelLineEditor.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "programs/oql/CZelCompleter.h"
#include "programs/oql/CZelResult.h"
#include "programs/oql/CZelStatementStore.h"
#include "tests/port/ScratchDirectory.h"

namespace {

constexpr int PATIENCE_MS = 20000;  // for a loaded machine; an answer comes at once

// The shell at a terminal of its own.
class Terminal {
public:
    explicit Terminal(const std::string &home) {
        m_child = forkpty(&m_terminal, nullptr, nullptr, nullptr);
        if (m_child != 0)
            return;
        setenv("XDG_STATE_HOME", home.c_str(), 1);
        setenv("TERM", "xterm", 1);
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // libedit never frees the names of added functions
        execl(QUINTOR_PROGRAM_DIR "/oql", "oql", "-format", "oql", nullptr);
        _exit(127);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;
    ~Terminal() {
        close(m_terminal);
        if (m_child > 0)
            kill(m_child, SIGKILL);
    }

    bool isThere() const { return m_child > 0; }

    // Types, and gives what the terminal shows up to and with `until`; empty when that does not come.
    std::string type(const std::string &keys, const std::string &until) {
        if (write(m_terminal, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
            return {};
        std::string shown;
        char buffer[4096];
        pollfd end = {m_terminal, POLLIN, 0};
        while (shown.find(until) == std::string::npos) {
            ssize_t count = poll(&end, 1, PATIENCE_MS) == 1 ? read(m_terminal, buffer, sizeof(buffer)) : 0;
            if (count <= 0)
                return {};
            shown.append(buffer, static_cast<std::size_t>(count));
        }
        return shown;
    }

    int exitCode() {
        int status = 0;
        waitpid(m_child, &status, 0);
        m_child = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    int m_terminal = -1;
    pid_t m_child = -1;
};

TEST(LineEditorTest, ATerminalIsTalkedToAndItsHistoryKeptPrivate) {
    ScratchDirectory home;
    Terminal terminal(home.Path("state"));
    if (!terminal.isThere())
        GTEST_SKIP() << "this machine has no pseudo terminals";
    EXPECT_NE("", terminal.type("", "oql> "));
    EXPECT_NE("", terminal.type("create database net;\r", "oql> "));
    EXPECT_NE("", terminal.type("create table net.chassis\r", "...> "));
    EXPECT_NE("", terminal.type("(Name text);\r", "oql> "));
    // Ctrl-C clears the line, and what stands in the lines before it.
    EXPECT_NE("", terminal.type("select 'half\r", "...> "));
    EXPECT_NE("", terminal.type("more\x03", "^C\r\noql> "));
    EXPECT_NE("", terminal.type("show tables fr\tnet;\r", "{tables=['chassis']}"));
    EXPECT_NE("", terminal.type(".quit\r", "\n"));
    EXPECT_EQ(0, terminal.exitCode());
    struct stat about = {};
    ASSERT_EQ(0, stat(home.Path("state/quintor/oql_history").c_str(), &about));
    EXPECT_EQ(0600U, about.st_mode & 07777U);
}

TEST(LineEditorTest, HistoryHasAHome) {
    ScopedVariable state("XDG_STATE_HOME", "/state");
    EXPECT_EQ("/state/quintor/oql_history", CZelLineEditor::HistoryPath());
    ScopedVariable none("XDG_STATE_HOME", nullptr);
    ScopedVariable home("HOME", "/home/me");
    EXPECT_EQ("/home/me/.local/state/quintor/oql_history", CZelLineEditor::HistoryPath());
    ScopedVariable lost("HOME", nullptr);
    EXPECT_EQ("", CZelLineEditor::HistoryPath());
}

using Words = std::vector<std::string>;

TEST(CompleterTest, OffersKeywordsAndWhatIsInTheStoreNow) {
    CZelStatementStore store;
    CZelCompleter completer(*store.RSMGetStore());
    EXPECT_EQ((Words{"null"}), completer.Candidates("nu"));
    EXPECT_EQ((Words{"NULL"}), completer.Candidates("NU"));
    CZelResult result;
    store.Run("create database nut; create table nut.shell (number int, size int); create table nut.oil (size int);",
              result);
    EXPECT_EQ((Words{"null", "number", "nut"}), completer.Candidates("nu"));
    EXPECT_EQ((Words{"nut.oil", "nut.shell"}), completer.Candidates("nut."));
    EXPECT_EQ((Words{"size"}), completer.Candidates("siz"));
    EXPECT_EQ((Words{".dump"}), completer.Candidates(".du"));
    EXPECT_EQ((Words{}), completer.Candidates("none."));
}

TEST(CompleterTest, CompletesTheLastWordAsFarAsItIsSure) {
    EXPECT_EQ("net.ch", CZelCompleter::WordAtEnd("select * from net.ch"));
    EXPECT_EQ("", CZelCompleter::WordAtEnd("select "));
    EXPECT_EQ("nu", CZelCompleter::CommonStart({"null", "number", "nut"}));
    EXPECT_EQ("", CZelCompleter::CommonStart({}));
}

}  // namespace
