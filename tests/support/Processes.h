#pragma once

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <cstdio>
#include <functional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace tvx::test {

// A child process, its standard output and error sent to files when named; stopped
// (SIGTERM) and reaped when it goes out of scope still running.
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
        if (!out.empty())
            posix_spawn_file_actions_addopen(&files, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (!err.empty())
            posix_spawn_file_actions_addopen(&files, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (posix_spawnp(&m_pid, argv[0], &files, nullptr, argv.data(), environ) != 0)
            m_pid = -1;
        posix_spawn_file_actions_destroy(&files);
    }
    Child(Child&& other) noexcept : m_pid(other.m_pid) { other.m_pid = -1; }
    Child& operator=(Child&& other) noexcept
    {
        std::swap(m_pid, other.m_pid);
        return *this;
    }
    ~Child() { stop(); }

    bool started() const { return m_pid > 0; }
    // Started and not ended yet.
    bool running()
    {
        int status = 0;
        if (m_pid > 0 && waitpid(m_pid, &status, WNOHANG) == m_pid)
            m_pid = -1;
        return m_pid > 0;
    }
    void stop(int signal = SIGTERM)
    {
        if (m_pid <= 0)
            return;
        kill(m_pid, signal);
        wait();
    }
    // Its exit status once it has ended; -1 when it did not exit by itself.
    int wait()
    {
        int status = 0;
        const bool ended = m_pid > 0 && waitpid(m_pid, &status, 0) == m_pid;
        m_pid = -1;
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

// An Xvfb server of the given size ("1760x1000x24") on a display number it chooses itself,
// since other test runs on this machine may be starting servers at the same moment. The
// number is passed through a file in the folder; display is empty when no server came up.
struct VirtualScreen {
    Child server;
    std::string display;
};

inline VirtualScreen startVirtualScreen(const std::string& size, const std::string& folder)
{
    // Two servers starting at once may both pick a number; the one that loses it ends, and
    // is started again.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const std::string chosen = folder + "/display";
        VirtualScreen screen{Child({"Xvfb", "-displayfd", "1", "-screen", "0", size, "-nolisten", "tcp"}, chosen), {}};
        std::string number;
        const bool told = screen.server.started() && eventually([&] {
            number.clear();
            if (FILE* file = std::fopen(chosen.c_str(), "r")) {
                char buffer[32] = {};
                if (std::fgets(buffer, sizeof buffer, file) != nullptr)
                    number = buffer;
                std::fclose(file);
            }
            return !number.empty() && number.back() == '\n';
        }, std::chrono::seconds(10));
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        if (told && screen.server.running()) {
            screen.display = ":" + number.substr(0, number.size() - 1);
            return screen;
        }
    }
    return {};
}

} // namespace tvx::test
