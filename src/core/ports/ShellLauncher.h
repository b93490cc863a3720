#pragma once

#include <string>

namespace tvx {

// Port: the system shell: opens a file with its associated program or an address with
// the default browser. Returns false when the shell refused.
class ShellLauncher {
public:
    virtual ~ShellLauncher() = default;
    virtual bool fileExists(const std::string& path) = 0;
    virtual bool open(const std::string& fileOrUrl) = 0;
    // The hourglass pointer while a launched program starts.
    virtual void setBusyCursor(bool busy) = 0;
};

} // namespace tvx
