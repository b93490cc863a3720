#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace tvx::platform {

// The folder of the running program.
std::filesystem::path programFolder();

// Whether this user may create files in the folder.
bool isWritableFolder(const std::filesystem::path& folder);

// The per-user data folder, for a program folder that is not writable.
std::filesystem::path userDataFolder();

// Where the program runs from, and where an installation (bin/ and share/tallivex/ under
// one prefix, as the Linux package lays it out) keeps the program's read-only files,
// relative to the program's folder; empty where nothing is installed that way (Windows).
struct ProgramLayout {
    std::filesystem::path programFolder;
    std::filesystem::path dataFromProgram;

    // The installation's data folder, or empty when the program runs from a folder of its
    // own (a build tree, the unpacked zip).
    std::filesystem::path installedDataFolder() const;
};

// This program's layout.
ProgramLayout programLayout();

// Where the help documents are: the installation's data folder, else the program's folder.
std::filesystem::path documentFolder(const ProgramLayout& layout = programLayout());

// Where configuration, debug log and capture file live: the override when given, else the
// program's folder when it is the program's own and writable (unzip and run), else a
// per-user data folder (an installed program: even root must not write into /usr/bin).
// Created when missing.
std::filesystem::path homeFolder(const std::optional<std::filesystem::path>& override = std::nullopt,
                                 const ProgramLayout& layout = programLayout());

// The temporary folder the system unpacks archives into, long and short (8.3) form; both
// empty where programs are not run from there (Linux: archive tools extract where asked).
std::pair<std::string, std::string> temporaryFolder();

} // namespace tvx::platform
