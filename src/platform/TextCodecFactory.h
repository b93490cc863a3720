#pragma once

#include "ports/TextCodec.h"

#include <memory>

namespace tvx::platform {

// The machine's converter between UTF-8 and CP932 (iconv, or the Windows code page 932).
std::unique_ptr<TextCodec> makeTextCodec();

} // namespace tvx::platform
