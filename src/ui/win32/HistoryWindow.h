#pragma once

#include "Win32Ui.h"

#include "view/LiveWindowModel.h"

#include <windows.h>

#include <array>
#include <filesystem>
#include <functional>
#include <optional>

namespace tvx {
class Prompter;
}

namespace tvx::win32ui {

// Asks where to export the history; nullopt when the player cancels.
using ExportChooser = std::function<std::optional<std::filesystem::path>(HWND owner)>;

// The save-file dialog, proposing kHistoryExportName.
std::optional<std::filesystem::path> chooseExportFile(HWND owner);

// frmHistory: the sessions of the history file and their totals per day and per week, a
// page each, with an export to CSV. Modeless over its owner; opened again, it reads the
// file again.
class HistoryWindow {
public:
    static constexpr int kTabPages = 300;
    static constexpr int kLvwPage = 301; // + page
    static constexpr int kCmdExport = 310;
    static constexpr int kCmdClose = 311;

    HistoryWindow() = default;
    ~HistoryWindow();
    HistoryWindow(const HistoryWindow&) = delete;
    HistoryWindow& operator=(const HistoryWindow&) = delete;

    // Reads historyFile and shows its tables; a file that cannot be read is named to the
    // player through prompter and the pages stay empty.
    void show(HWND owner, const std::filesystem::path& historyFile, Prompter& prompter, ExportChooser chooser);

    // The captions (and the headers of the rows shown) in the current language.
    void retranslate();
    HWND handle() const { return m_window; }
    HWND listView(std::size_t page) const { return m_lists[page]; }
    HWND tabs() const { return m_tabs; }

    LRESULT handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    void create(HWND owner);
    void fill();
    void layout();
    void selectPage(std::size_t page);
    void exportCsv();

    HWND m_window = nullptr;
    HWND m_tabs = nullptr;
    std::array<HWND, 3> m_lists{};
    HWND m_cmdExport = nullptr;
    HWND m_cmdClose = nullptr;
    Dpi m_dpi;
    Font m_font;
    std::filesystem::path m_file;
    Prompter* m_prompter = nullptr;
    ExportChooser m_chooser;
    HistoryWindowData m_data;
};

} // namespace tvx::win32ui
