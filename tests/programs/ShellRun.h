// One run of the shell as a process, with what it wrote and how it ended.
#pragma once

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

struct ShellRun {
    std::string out;
    std::string err;
    int exitCode = -1;  // -1 when a signal ended it
};

// Feeds `input`, collects both outputs until they close.
inline void talk(int input, const std::string &text, int output, int error, ShellRun &run) {
    std::size_t sent = 0;
    pollfd ends[] = {{input, POLLOUT, 0}, {output, POLLIN, 0}, {error, POLLIN, 0}};
    char buffer[65536];
    while (ends[1].fd >= 0 || ends[2].fd >= 0) {
        if (ends[0].fd >= 0 && sent == text.size()) {
            close(ends[0].fd);
            ends[0].fd = -1;
        }
        poll(ends, 3, -1);
        if (ends[0].fd >= 0 && ends[0].revents != 0) {
            ssize_t count = write(ends[0].fd, text.data() + sent, text.size() - sent);
            sent = count < 0 ? text.size() : sent + static_cast<std::size_t>(count);
        }
        for (int i : {1, 2}) {
            if (ends[i].fd < 0 || ends[i].revents == 0)
                continue;
            ssize_t count = read(ends[i].fd, buffer, sizeof(buffer));
            if (count > 0) {
                (i == 1 ? run.out : run.err).append(buffer, static_cast<std::size_t>(count));
                continue;
            }
            close(ends[i].fd);
            ends[i].fd = -1;
        }
    }
    if (ends[0].fd >= 0)
        close(ends[0].fd);
}

inline ShellRun runShell(std::vector<std::string> words, const std::string &input = std::string()) {
    std::string program = QUINTOR_PROGRAM_DIR "/oql";
    words.insert(words.begin(), program);
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    int in[2];
    int out[2];
    int err[2];
    if (pipe(in) != 0 || pipe(out) != 0 || pipe(err) != 0)
        return {};
    std::signal(SIGPIPE, SIG_IGN);
    pid_t child = fork();
    if (child == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        for (int end : {in[0], in[1], out[0], out[1], err[0], err[1]})
            close(end);
        execv(argv[0], argv.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    close(err[1]);
    ShellRun run;
    talk(in[1], input, out[0], err[0], run);
    int status = 0;
    waitpid(child, &status, 0);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}
