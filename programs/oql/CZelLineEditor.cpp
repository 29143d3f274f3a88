#include "programs/oql/CZelLineEditor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <vector>

#ifdef QUINTOR_HAVE_LIBEDIT
#include <histedit.h>
#endif

#include "programs/oql/CZelCompleter.h"
#include "programs/oql/CZelInterrupt.h"

namespace {

// With its folders, as far as they can be made.
bool makeFolders(const std::string &path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        if (mkdir(path.substr(0, slash).c_str(), 0700) != 0 && errno != EEXIST)
            return false;
    }
    return true;
}

}  // namespace

std::string CZelLineEditor::HistoryPath() {
    const char *state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/')
        return std::string(state) + "/quintor/oql_history";
    const char *home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/')
        return std::string();
    return std::string(home) + "/.local/state/quintor/oql_history";
}

#ifdef QUINTOR_HAVE_LIBEDIT

namespace {

constexpr int HISTORY_LINES = 1000;

// Waits for a byte of standard input. SIGINT is let in only while waiting, so that a Ctrl-C that comes a moment
// before the wait ends it too. False when it did.
bool waitForByte() {
    sigset_t interrupt;
    sigset_t usual;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    sigprocmask(SIG_BLOCK, &interrupt, &usual);
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    int ready = 0;
    while (!CZelInterrupt::Raised() && ready == 0)
        if (ppoll(&input, 1, nullptr, &usual) > 0 || errno != EINTR)
            ready = 1;
    sigprocmask(SIG_SETMASK, &usual, nullptr);
    return ready != 0;
}

// One character of UTF-8 from standard input. Ctrl-C ends the wait, unlike in the editor's own reader.
int readCharacter(EditLine * /*editor*/, wchar_t *character) {
    std::mbstate_t state = {};
    char byte = '\0';
    for (;;) {
        if (!waitForByte())
            return -1;
        ssize_t got = read(STDIN_FILENO, &byte, 1);
        if (got < 0 && errno == EINTR && !CZelInterrupt::Raised())
            continue;
        if (got <= 0)
            return static_cast<int>(got);
        std::size_t length = std::mbrtowc(character, &byte, 1, &state);
        if (length == static_cast<std::size_t>(-1))
            state = {};
        else if (length != static_cast<std::size_t>(-2))
            return 1;
    }
}

}  // namespace

class CZelLineEditor::Terminal {
public:
    explicit Terminal(const CZelCompleter &completer)
        : m_completer(completer), m_editor(el_init("oql", stdin, stderr, stderr)), m_history(history_init()) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
        history(m_history, &m_event, H_SETSIZE, HISTORY_LINES);
        history(m_history, &m_event, H_SETUNIQUE, 1);
        loadHistory();
        setUpEditor();
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;
    ~Terminal() {
        saveHistory();
        history_end(m_history);
        el_end(m_editor);
    }

    Outcome read(const char *prompt, std::string &line) {
        m_prompt = prompt;
        el_resize(m_editor);
        int length = 0;
        const char *text = el_gets(m_editor, &length);
        if (CZelInterrupt::Raised())
            return interrupted();
        if (text == nullptr || length <= 0)
            return END;
        line.assign(text, static_cast<std::size_t>(length));
        remember(line);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
            line.pop_back();
        return LINE;
    }

private:
    static Terminal *of(EditLine *editor) {
        Terminal *terminal = nullptr;
        el_get(editor, EL_CLIENTDATA, &terminal);
        return terminal;
    }

    static char *promptOf(EditLine *editor) { return of(editor)->m_prompt.data(); }

    static unsigned char completeWord(EditLine *editor, int /*key*/) { return of(editor)->complete(); }

    unsigned char complete() {
        const LineInfo *info = el_line(m_editor);
        std::string_view line(info->buffer, static_cast<std::size_t>(info->cursor - info->buffer));
        std::string_view word = CZelCompleter::WordAtEnd(line);
        std::vector<std::string> candidates = m_completer.Candidates(word);
        std::string rest = CZelCompleter::CommonStart(candidates);
        if (candidates.size() == 1)
            rest += ' ';
        rest.erase(0, word.size());
        if (!rest.empty())
            return el_insertstr(m_editor, rest.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
        return candidates.empty() ? CC_ERROR : list(candidates);
    }

    void setUpEditor() {
        el_set(m_editor, EL_CLIENTDATA, this);
        el_set(m_editor, EL_PROMPT, promptOf);
        el_set(m_editor, EL_EDITOR, "emacs");
        el_set(m_editor, EL_SIGNAL, 0);
        el_set(m_editor, EL_HIST, history, m_history);
        el_set(m_editor, EL_GETCFN, readCharacter);
        el_set(m_editor, EL_ADDFN, "oql-complete", "complete keywords and names", completeWord);
        el_set(m_editor, EL_BIND, "^I", "oql-complete", nullptr);
        el_set(m_editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    }

    Outcome interrupted() {
        CZelInterrupt::Clear();
        el_reset(m_editor);
        std::fputs("^C\n", stderr);
        return INTERRUPTED;
    }

    unsigned char list(const std::vector<std::string> &candidates) {
        std::fputc('\n', stderr);
        for (const std::string &candidate : candidates)
            std::fprintf(stderr, "%s  ", candidate.c_str());
        std::fputc('\n', stderr);
        return CC_REDISPLAY;
    }

    void remember(const std::string &line) {
        if (line.find_first_not_of(" \t\r\n") != std::string::npos)
            history(m_history, &m_event, H_ENTER, line.c_str());
    }

    void loadHistory() {
        std::string path = HistoryPath();
        if (!path.empty() && access(path.c_str(), R_OK) == 0)
            history(m_history, &m_event, H_LOAD, path.c_str());
    }

    // Opened here, so that nobody else can read it for a moment even.
    void saveHistory() {
        std::string path = HistoryPath();
        if (path.empty() || !makeFolders(path))
            return;
        int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
        FILE *stream = file < 0 ? nullptr : fdopen(file, "w");
        if (stream == nullptr)
            return;
        fchmod(file, 0600);
        history(m_history, &m_event, H_SAVE_FP, stream);
        std::fclose(stream);
    }

    const CZelCompleter &m_completer;
    EditLine *m_editor;
    History *m_history;
    HistEvent m_event = {};
    std::string m_prompt;
};

#else

// Without an editor: lines as the terminal gives them.
class CZelLineEditor::Terminal {
public:
    explicit Terminal(const CZelCompleter & /*completer*/) {}

    Outcome read(const char *prompt, std::string &line) {
        std::fputs(prompt, stderr);
        line.clear();
        char byte = '\0';
        ssize_t got = 0;
        while ((got = ::read(STDIN_FILENO, &byte, 1)) == 1 && byte != '\n')
            line += byte;
        if (CZelInterrupt::Raised()) {
            CZelInterrupt::Clear();
            std::fputc('\n', stderr);
            return INTERRUPTED;
        }
        return got <= 0 && line.empty() ? END : LINE;
    }
};

#endif

CZelLineEditor::CZelLineEditor(const CZelCompleter &completer) : m_terminal(std::make_unique<Terminal>(completer)) {}

CZelLineEditor::~CZelLineEditor() = default;

CZelLineEditor::Outcome CZelLineEditor::Read(const char *prompt, std::string &line) {
    return m_terminal->read(prompt, line);
}
