#pragma once

// moc cannot parse the standard library's C++20 headers; it needs none of these types.
#ifndef Q_MOC_RUN
#include "measurement/LiveFigures.h"
#endif

#include <QDialog>

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

class QTabWidget;
class QTableWidget;

namespace tvx {
class Prompter;
struct HistoryTable;
} // namespace tvx

namespace tvx::ui {

// The session history: the sessions newest first and their totals per day and per week,
// each on its tab, and the export of the sessions as a CSV file. It reads the history
// file and never writes it.
class FormHistory : public QDialog {
    Q_OBJECT

public:
    // Asks where the export goes: the parent window and the proposed file; empty cancels.
    using SaveChooser = std::function<QString(QWidget*, const QString&)>;

    explicit FormHistory(Prompter& prompter, QWidget* parent = nullptr);

    // Reads the history file and shows its rows; an unreadable one is named to the player
    // and shows none.
    void load(const std::filesystem::path& historyFile);
    // The captions (and the headers of the rows shown) in the current language.
    void retranslate();
    // Tests answer the save dialog themselves.
    void setSaveChooser(SaveChooser chooser) { m_chooseTarget = std::move(chooser); }

private:
    void fill(std::size_t page, const HistoryTable& table);
    void cmdExport_Click();

    Prompter& m_prompter;
    SaveChooser m_chooseTarget;
    std::filesystem::path m_historyFile;
    std::vector<HistoryRow> m_rows;
    QTabWidget* m_tabs = nullptr;
    // Sessions, days, weeks.
    std::array<QTableWidget*, 3> m_grids{};
    bool m_fitted = false;
};

} // namespace tvx::ui
