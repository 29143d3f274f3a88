#include "programs/oql/CZelShell.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "foundations/version/CQMTVersion.h"
#include "programs/oql/CZelCompleter.h"
#include "programs/oql/CZelInterrupt.h"
#include "programs/oql/CZelLineEditor.h"
#include "programs/oql/CZelProgress.h"

namespace {

constexpr std::size_t CHUNK = 64 * 1024;

// Without the line end that belongs to the line before, and blank lines at the front but one.
std::string_view echoedLead(std::string_view lead) {
    std::size_t newLine = lead.find('\n');
    if (lead.substr(0, newLine).find_first_not_of(" \t\r") == std::string_view::npos)
        lead.remove_prefix(newLine == std::string_view::npos ? lead.size() : newLine + 1);
    return lead;
}

class OpenFile {
public:
    explicit OpenFile(const std::string &path) : m_file(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile() {
        if (m_file >= 0)
            close(m_file);
    }
    int descriptor() const { return m_file; }
    long size() const {
        struct stat about = {};
        return fstat(m_file, &about) == 0 && S_ISREG(about.st_mode) ? static_cast<long>(about.st_size) : 0;
    }

private:
    int m_file;
};

}  // namespace

CZelShell::CZelShell(const CZelShellOptions &options, int results)
    : m_options(options),
      m_output(results),
      m_format(options.m_format),
      m_writer(CZelResultWriter::Make(options.m_format, m_output)),
      m_store(options.m_cache) {
    m_store.OnRecovered([this](const std::string &what) { say("oql: " + what + "\n"); });
}

CZelShell::~CZelShell() = default;

int CZelShell::Run() {
    if (!m_options.m_output.empty() && !m_output.Open(m_options.m_output)) {
        complain("can't write " + m_options.m_output + ": " + std::strerror(errno));
        return FAILED;
    }
    readSchemas();
    if (goesOn())
        runInputs();
    m_output.Flush();
    if (m_output.Error() != 0 && m_output.Error() != EPIPE)
        complain(std::string("can't write results: ") + std::strerror(m_output.Error()));
    return m_failed || m_output.Error() != 0 ? FAILED : DONE;
}

void CZelShell::runInputs() {
    for (const SZelShellInput &input : m_options.m_inputs) {
        if (!goesOn())
            return;
        if (input.m_kind == SZelShellInput::TEXT)
            runText("-c", input.m_value, m_options.m_echo);
        else
            runFile(input.m_value, m_options.m_echo);
    }
    if (!m_options.m_inputs.empty())
        return;
    if (isatty(STDIN_FILENO) == 1)
        runTerminal();
    else
        runDescriptor(STDIN_FILENO, "stdin", m_options.m_echo, nullptr);
}

void CZelShell::runText(const std::string &name, const std::string &text, bool echo) {
    CZelSplitter splitter;
    splitter.Feed(text);
    splitter.Finish();
    drain(splitter, name, echo);
}

bool CZelShell::runFile(const std::string &path, bool echo) {
    if (path == "-") {
        runDescriptor(STDIN_FILENO, "stdin", echo, nullptr);
        return true;
    }
    OpenFile file(path);
    if (file.descriptor() < 0)
        return complain("can't open " + path + ": " + std::strerror(errno));
    CZelProgress progress(path, file.size());
    runDescriptor(file.descriptor(), path, echo, &progress);
    return true;
}

void CZelShell::runDescriptor(int file, const std::string &name, bool echo, CZelProgress *progress) {
    CZelSplitter splitter;
    std::string chunk(CHUNK, '\0');
    while (goesOn()) {
        ssize_t got = read(file, chunk.data(), chunk.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            complain("can't read " + name + ": " + std::strerror(errno));
        if (got <= 0)
            break;
        splitter.Feed(std::string_view(chunk).substr(0, static_cast<std::size_t>(got)));
        drain(splitter, name, echo);
        if (progress != nullptr)
            progress->Done(got);
    }
    splitter.Finish();
    drain(splitter, name, echo);
}

void CZelShell::runTerminal() {
    m_terminal = true;
    say("oql " + CQMTVersion::Instance().System().AsString() + ", .help for help\n");
    CZelCompleter completer(*m_store.RSMGetStore());
    CZelLineEditor editor(completer);
    CZelSplitter splitter;
    std::string line;
    while (goesOn()) {
        CZelLineEditor::Outcome outcome = editor.Read(splitter.IsUnderWay() ? "...> " : "oql> ", line);
        if (outcome == CZelLineEditor::END)
            break;
        if (outcome == CZelLineEditor::INTERRUPTED) {
            splitter.Drop();
            continue;
        }
        splitter.Feed(line + "\n");
        drain(splitter, std::string(), false);
        CZelInterrupt::Clear();
    }
    splitter.Finish();
    drain(splitter, std::string(), false);
}

void CZelShell::drain(CZelSplitter &splitter, const std::string &source, bool echo) {
    SZelPiece piece;
    while (goesOn() && splitter.Next(piece)) {
        if (echo)
            echoPiece(piece);
        runPiece(piece, source);
    }
    if (m_terminal && CZelInterrupt::Raised())
        splitter.Drop();
}

void CZelShell::echoPiece(const SZelPiece &piece) {
    m_output.Flush();
    say(std::string(echoedLead(piece.m_lead)) + std::string(piece.m_text) + "\n");
}

void CZelShell::runPiece(const SZelPiece &piece, const std::string &source) {
    SZelPlace outer = m_place;
    m_place = {source, piece.m_line, piece.m_column};
    std::string text(piece.m_text);
    if (text.find('\0') != std::string::npos)
        complain("a statement holds a NUL byte");
    else if (piece.m_kind == SZelPiece::COMMAND)
        runCommand(text);
    else
        runStatement(text);
    m_place = outer;
}

// Shall the next piece be run?
bool CZelShell::goesOn() {
    if (m_output.Error() != 0)
        m_stopped = true;
    if (CZelInterrupt::Raised() && !m_terminal) {
        m_stopped = true;
        m_failed = true;
    }
    return !m_stopped && !CZelInterrupt::Raised();
}

void CZelShell::failed() {
    m_failed = true;
    m_stopped = m_stopped || m_options.m_bail;
}

void CZelShell::say(const std::string &text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

bool CZelShell::complain(const std::string &text) {
    m_output.Flush();
    say(ZelPlacePrefix(m_place) + text + "\n");
    failed();
    return false;
}
