#pragma once

#include "ports/ImageEncoder.h"
#include "ports/ShellLauncher.h"
#include "ports/Sound.h"

#include <memory>

namespace tvx::platform {

// MessageBeep and Beep.
std::unique_ptr<Sound> makeWin32Sound();
// ShellExecuteW "open", GetFileAttributesW and the wait cursor.
std::unique_ptr<ShellLauncher> makeWin32ShellLauncher();
// PNG and JPEG through the GDI+ flat API, one GDI+ session per file.
std::unique_ptr<ImageEncoder> makeGdiplusImageEncoder();

} // namespace tvx::platform
