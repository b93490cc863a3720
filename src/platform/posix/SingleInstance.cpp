#include "SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tvx::platform {

namespace {

// flock() is released by the system when the process ends, however it ends, so a lock
// left by a killed run never blocks the next start.
class LockFile final : public SingleInstance {
public:
    explicit LockFile(int descriptor) : m_descriptor(descriptor) {}
    ~LockFile() override { ::close(m_descriptor); }
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

private:
    int m_descriptor;
};

} // namespace

std::unique_ptr<SingleInstance> acquireSingleInstance(const std::filesystem::path& home)
{
    const int descriptor = ::open((home / "tallivex.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (descriptor < 0)
        return nullptr;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(descriptor);
        return nullptr;
    }
    return std::make_unique<LockFile>(descriptor);
}

} // namespace tvx::platform
