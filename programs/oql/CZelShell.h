// The shell: reads statements and its own commands from where the command line says, runs each on one store,
// and writes what they give. It tells its caller how it went by its exit code.
//
// Results go to the descriptor given and nothing else does; reports and all talk go to standard error.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundations/base/ZelEnums.h"
#include "programs/oql/CZelResultWriter.h"
#include "programs/oql/CZelShellOptions.h"
#include "programs/oql/CZelShellOutput.h"
#include "programs/oql/CZelSplitter.h"
#include "programs/oql/CZelStatementStore.h"
#include "programs/oql/ZelFailureText.h"

class CZelProgress;
class CZelResult;

class CZelShell {
public:
    static constexpr int DONE = 0;
    static constexpr int FAILED = 1;
    static constexpr int USAGE = 2;

    CZelShell(const CZelShellOptions &options, int results);
    CZelShell(const CZelShell &) = delete;
    CZelShell &operator=(const CZelShell &) = delete;
    ~CZelShell();

    int Run();  // DONE or FAILED

    static const std::vector<std::string_view> &CommandNames();

private:
    struct Command {
        std::string_view m_name;
        const char *m_arguments;
        const char *m_help;
        bool (CZelShell::*m_run)(const std::string &argument);
    };
    static const std::vector<Command> &commands();

    // --- sources (CZelShell.cpp) ---

    void runInputs();
    void runText(const std::string &name, const std::string &text, bool echo);
    bool runFile(const std::string &path, bool echo);
    void runDescriptor(int file, const std::string &name, bool echo, CZelProgress *progress);
    void runTerminal();
    void drain(CZelSplitter &splitter, const std::string &source, bool echo);
    void runPiece(const SZelPiece &piece, const std::string &source);
    void echoPiece(const SZelPiece &piece);
    bool goesOn();
    void failed();
    void say(const std::string &text);
    bool complain(const std::string &text);  // a failure of the shell's own; false

    // --- statements (CZelShell_statement.cpp) ---

    void runStatement(const std::string &text);
    void show(CZelResult &result, const char *statement);
    void showFailure(const CZelResult &result, const std::string &statement);

    // --- schema files (CZelShell_schema.cpp) ---

    void readSchemas();
    std::string schemaFailure(const CZelResult &result) const;

    // --- commands (CZelShell_commands.cpp); true when done ---

    bool runCommand(const std::string &line);
    bool helpCommand(const std::string &argument);
    bool databasesCommand(const std::string &argument);
    bool tablesCommand(const std::string &argument);
    bool schemaCommand(const std::string &argument);
    bool indexesCommand(const std::string &argument);
    bool cacheCommand(const std::string &argument);
    bool describeCommand(const std::string &argument);
    bool readCommand(const std::string &argument);
    bool dumpCommand(const std::string &argument);
    bool dumpToFile(const std::string &path, CZelResult &result);
    bool formatCommand(const std::string &argument);
    bool outputCommand(const std::string &argument);
    bool recordCommand(const std::string &argument);
    bool constCommand(const std::string &argument);
    bool timerCommand(const std::string &argument);
    bool quitCommand(const std::string &argument);
    void showText(const std::string &text);

    const CZelShellOptions &m_options;
    CZelShellOutput m_output;
    EZelFormat m_format;
    std::unique_ptr<CZelResultWriter> m_writer;
    CZelStatementStore m_store;
    SZelPlace m_place;  // of the piece that runs
    bool m_failed = false;
    bool m_stopped = false;   // nothing more is run
    bool m_terminal = false;  // people type
    bool m_timer = false;
    int m_depth = 0;  // of .read within .read
};
