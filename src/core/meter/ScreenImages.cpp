#include "meter/ScreenImages.h"

#include "ports/ImageEncoder.h"
#include "meter/ScreenCapture.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"

namespace tvx {

namespace {

std::filesystem::path withExtension(std::filesystem::path base, std::string_view extension)
{
    base += extension;
    return base;
}

} // namespace

std::filesystem::path screenshotFolder(std::string_view saveFolder)
{
    const std::filesystem::path folder = utf8Path(saveFolder) / "ss";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw RuntimeError(ErrorNumber::PathNotFound, "cannot create " + pathUtf8(folder));
    return folder;
}

bool ScreenImages::PrintScreen(const std::filesystem::path& basePath, std::string_view format)
{
    try {
        std::optional<CaptureBitmap> screen;
        if (m_capture.take({}, screen) != ScreenCapture::Result::Taken || !screen) {
            m_log.WriteDebugLog("PrintScreen MissTake ");
            return false;
        }
        bool written = false;
        if (format == ".bmp")
            written = writeBitmap24(withExtension(basePath, ".bmp"), *screen);
        else if (format == ".png" && m_encoder != nullptr)
            written = m_encoder->writePng(toFrame(*screen), withExtension(basePath, ".png"));
        else if ((format == ".jpg90" || format == ".jpg70") && m_encoder != nullptr)
            written = m_encoder->writeJpeg(toFrame(*screen), withExtension(basePath, ".jpg"), format == ".jpg90" ? 90 : 70);
        else
            return false;
        if (!written)
            throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(basePath));
        return true;
    } catch (const RuntimeError& error) {
        m_log.writeErrorTrap("PrintScreen", error.number());
        return false;
    }
}

} // namespace tvx
