#pragma once

#include "shell/EnvironmentReport.h"

#include <string>
#include <vector>

namespace tvx::platform {

// What this machine reports about itself.
EnvironmentFacts gatherEnvironment();

// The system libraries the program loads, each with what fails without it.
std::vector<RequiredLibrary> requiredLibraries();
bool canLoadLibrary(const std::string& name);

// The user's language and region as the system names them ("ja_JP.UTF-8", "ko-KR"); "" when
// it names none.
std::string systemLocale();

} // namespace tvx::platform
