// The program itself, as a process of its own that can be killed at any moment.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace coretests {

class ServerProcess {
public:
    // Arguments behind the program's name. What it prints is kept.
    explicit ServerProcess(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), SERVER_PATH);
        std::vector<char*> values;
        for (auto& argument : arguments) values.push_back(argument.data());
        values.push_back(nullptr);
        int input[2], output[2], errors[2];
        for (int* const pair : {input, output, errors})
            if (::pipe2(pair, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        id_ = ::fork();
        if (id_ < 0) throw std::runtime_error("no process");
        if (id_ == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::dup2(input[0], 0);
            ::dup2(output[1], 1);
            ::dup2(errors[1], 2);
            ::execv(values[0], values.data());
            ::_exit(127);
        }
        for (const int end : {input[0], output[1], errors[1]}) ::close(end);
        input_ = input[1];
        output_ = output[0];
        errors_ = errors[0];
    }
    ~ServerProcess() {
        if (!status_) {
            kill(SIGKILL);
            wait();
        }
        for (const int end : {input_, output_, errors_}) ::close(end);
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    void kill(int signal) const { ::kill(id_, signal); }
    // The exit status, or the signal that ended it with a minus.
    int wait() {
        if (!status_) {
            int told = 0;
            while (::waitpid(id_, &told, 0) < 0 && errno == EINTR) {
            }
            status_ = WIFEXITED(told) ? WEXITSTATUS(told) : -WTERMSIG(told);
        }
        return *status_;
    }
    // Reads what it prints until a text has come, which is found in the result; up to its end, if it does not come.
    std::string readsuntil(const std::string& text) { return read(output_, text); }
    // Everything on its error stream, up to its end.
    std::string errors() { return read(errors_, {}); }

private:
    static std::string read(int end, const std::string& text) {
        std::string all;
        char buffer[4096];
        while (text.empty() || all.find(text) == std::string::npos) {
            const auto got = ::read(end, buffer, sizeof buffer);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) break;
            all.append(buffer, static_cast<std::size_t>(got));
        }
        return all;
    }

    pid_t id_ = -1;
    int input_ = -1, output_ = -1, errors_ = -1;
    std::optional<int> status_;
};

}  // namespace coretests
