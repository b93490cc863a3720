#pragma once

#include <chrono>
#include <csignal>
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

// A child process, killed and reaped when it goes out of scope.
class Child {
public:
    Child() = default;
    explicit Child(const std::vector<std::string>& args, const std::vector<std::string>& extraEnvironment = {})
    {
        std::vector<char*> argv;
        for (const auto& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        std::vector<std::string> env;
        for (char** e = environ; *e != nullptr; ++e)
            env.emplace_back(*e);
        env.insert(env.end(), extraEnvironment.begin(), extraEnvironment.end());
        std::vector<char*> envp;
        for (auto& e : env)
            envp.push_back(e.data());
        envp.push_back(nullptr);
        if (posix_spawnp(&m_pid, argv[0], nullptr, nullptr, argv.data(), envp.data()) != 0)
            m_pid = -1;
    }
    Child(Child&& other) noexcept : m_pid(other.m_pid) { other.m_pid = -1; }
    Child& operator=(Child&& other) noexcept
    {
        std::swap(m_pid, other.m_pid);
        return *this;
    }
    ~Child() { stop(); }

    bool started() const { return m_pid > 0; }
    bool running()
    {
        if (m_pid <= 0)
            return false;
        int status = 0;
        if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_pid = -1;
            return false;
        }
        return true;
    }
    void stop()
    {
        if (m_pid <= 0)
            return;
        kill(m_pid, SIGTERM);
        waitpid(m_pid, nullptr, 0);
        m_pid = -1;
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

} // namespace tvx::test
