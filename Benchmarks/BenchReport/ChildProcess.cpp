#include "ChildProcess.h"

#include "../Stopwatch.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <iostream>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace torvo::bench {

namespace {

void require(int error, const std::string& what) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 65536> buffer;
    for (;;) {
        const auto count = ::read(descriptor, buffer.data(), buffer.size());
        if (count > 0)
            text.append(buffer.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return text;
    }
}

/// Returns 0 or an error number.
int spawn(pid_t& child, std::vector<std::string> arguments,
          const posix_spawn_file_actions_t* actions) {
    std::vector<char*> pointers;
    for (auto& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return ::posix_spawnp(&child, pointers.front(), actions, nullptr, pointers.data(), environ);
}

rusage usageAtEnd(pid_t child, const std::string& name) {
    int status = 0;
    rusage usage{};
    while (::wait4(child, &status, 0, &usage) < 0)
        require(errno == EINTR ? 0 : errno, "wait4");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(name + " failed");
    return usage;
}

} // namespace

FinishedProcess runProcess(const std::vector<std::string>& arguments) {
    std::array<int, 2> pipe{};
    require(::pipe2(pipe.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe");
    posix_spawn_file_actions_t actions;
    require(::posix_spawn_file_actions_init(&actions), "posix_spawn_file_actions_init");
    require(::posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO), "adddup2");

    const Stopwatch watch;
    pid_t child = 0;
    const int error = spawn(child, arguments, &actions);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    FinishedProcess finished;
    if (error == 0)
        finished.output = readToEnd(pipe[0]);
    ::close(pipe[0]);
    require(error, arguments.front());

    const auto usage = usageAtEnd(child, arguments.front());
    finished.seconds = watch.seconds();
    finished.peakMemory = static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
    return finished;
}

BackgroundProcess::BackgroundProcess(const std::vector<std::string>& arguments) : process_(0) {
    require(spawn(process_, arguments, nullptr), arguments.front());
}

BackgroundProcess::~BackgroundProcess() {
    if (process_ == 0)
        return;
    ::kill(process_, SIGTERM);
    while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool BackgroundProcess::isRunning() {
    if (process_ != 0 && ::waitpid(process_, nullptr, WNOHANG) == process_)
        process_ = 0;
    return process_ != 0;
}

void runForked(const std::function<void()>& work) {
    const pid_t child = ::fork();
    require(child >= 0 ? 0 : errno, "fork");
    if (child == 0) {
        try {
            work();
            ::_exit(0);
        } catch (const std::exception& error) {
            std::cerr << error.what() << std::endl;
            ::_exit(1);
        }
    }
    usageAtEnd(child, "a copy of this process");
}

} // namespace torvo::bench
