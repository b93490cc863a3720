#pragma once

#include "ports/ImageEncoder.h"
#include "ports/ShellLauncher.h"
#include "ports/Waiter.h"

#include <cstdint>
#include <vector>

class QEventLoop;
class QImage;

namespace tvx::ui {

// A wait that keeps the window's events flowing (timers, menus, gestures run meanwhile).
class QtWaiter final : public Waiter {
public:
    void WaitMs(std::int32_t ms) override;
    void endWaits() override;

private:
    std::vector<QEventLoop*> m_loops; // the waits in progress, innermost last
    std::uint64_t m_endings = 0;
};

class QtShellLauncher final : public ShellLauncher {
public:
    bool fileExists(const std::string& path) override;
    bool open(const std::string& fileOrUrl) override;
    void setBusyCursor(bool busy) override;
};

class QtImageEncoder final : public ImageEncoder {
public:
    bool writePng(const Frame& image, const std::filesystem::path& path) override;
    bool writeJpeg(const Frame& image, const std::filesystem::path& path, int quality) override;
};

// The frame as a Qt image (a deep copy).
QImage toQImage(const Frame& frame);

} // namespace tvx::ui
