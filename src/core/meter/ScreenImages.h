#pragma once

#include <filesystem>
#include <string_view>

namespace tvx {

class DebugLog;
class ImageEncoder;
class ScreenCapture;

// Whole-screen images for the player: print screens, gesture and level-up shots.
class ScreenImages {
public:
    ScreenImages(ScreenCapture& capture, ImageEncoder* encoder, DebugLog& log)
        : m_capture(capture), m_encoder(encoder), m_log(log) {}

    // Takes a fresh image of the screen and writes it as basePath + the extension of the
    // format: ".bmp", ".png", ".jpg70" or ".jpg90" (both JPEGs end in ".jpg"). Any other
    // format writes nothing. False when no file was written.
    bool PrintScreen(const std::filesystem::path& basePath, std::string_view format);

private:
    ScreenCapture& m_capture;
    ImageEncoder* m_encoder;
    DebugLog& m_log;
};

// SaveFolder/ss, made when missing.
std::filesystem::path screenshotFolder(std::string_view saveFolder);

} // namespace tvx
