#pragma once

#include <filesystem>
#include <memory>

namespace tvx::platform {

// Held for the life of the program so a second start on the same home folder can be
// refused: a named mutex on Windows, a lock file on POSIX. A lock left by a killed run
// does not count.
class SingleInstance {
public:
    virtual ~SingleInstance() = default;
};

// Null when another instance holds the home folder.
std::unique_ptr<SingleInstance> acquireSingleInstance(const std::filesystem::path& home);

} // namespace tvx::platform
