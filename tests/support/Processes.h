#pragma once

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <utility>
#include <vector>

extern char** environ;

namespace tvx::test {

// A child process, its output and errors into files when named; stopped when it goes out of scope.
class Child {
public:
    Child() = default;
    explicit Child(const std::vector<std::string>& args, const std::string& out = {}, const std::string& err = {})
    {
        std::vector<char*> argv;
        for (const auto& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        for (const auto& [fd, file] : {std::pair{1, &out}, std::pair{2, &err}})
            if (!file->empty())
                posix_spawn_file_actions_addopen(&files, fd, file->c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (posix_spawnp(&m_pid, argv[0], &files, nullptr, argv.data(), environ) != 0)
            m_pid = -1;
        posix_spawn_file_actions_destroy(&files);
    }
    Child(Child&& other) noexcept : m_pid(std::exchange(other.m_pid, -1)) {}
    ~Child() { stop(); }

    bool started() const { return m_pid > 0; }
    void stop(int signal = SIGTERM)
    {
        if (m_pid > 0)
            kill(m_pid, signal);
        wait();
    }
    // Its exit status once it has ended; -1 when it did not exit by itself.
    int wait()
    {
        int status = 0;
        const bool ended = m_pid > 0 && waitpid(std::exchange(m_pid, -1), &status, 0) > 0;
        return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_pid = -1;
};

// Standard output of a short command, or "" when it failed.
inline std::string output(const std::string& command)
{
    std::string text;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[512];
        while (std::fgets(buffer, sizeof buffer, pipe) != nullptr)
            text += buffer;
        pclose(pipe);
    }
    return text;
}

// Polls until the condition holds or the time is up; true when it held.
inline bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < end) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return condition();
}

// An Xvfb server of a size ("1760x1000x24") on a display it chooses; display is "" when none came up.
struct VirtualScreen {
    Child server;
    std::string display;
};

inline VirtualScreen startVirtualScreen(const std::string& size, const std::string& folder)
{
    // Without -noreset the server starts over whenever its last client (each xdotool call) leaves
    // and cuts off whoever connects meanwhile. The display is ours once it answers with our size.
    std::string answer = size.substr(0, size.rfind('x')) + "\n";
    answer[answer.find('x')] = ' ';
    const std::vector<std::string> xvfb{"Xvfb", "-displayfd", "1", "-screen", "0", size,
                                        "-nolisten", "tcp", "-noreset"};
    const std::string told = folder + "/display";
    for (int attempt = 0; attempt < 3; ++attempt) {
        VirtualScreen screen{Child(xvfb, told), {}};
        std::string number;
        const auto ours = [&] {
            number.clear();
            std::ifstream(told) >> number;
            return !number.empty() &&
                   output("DISPLAY=:" + number + " xdotool getdisplaygeometry 2>/dev/null") == answer;
        };
        if (screen.server.started() && eventually(ours, std::chrono::seconds(20))) {
            screen.display = ":" + number;
            return screen;
        }
    }
    return {};
}

} // namespace tvx::test
