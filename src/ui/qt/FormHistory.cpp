#include "FormHistory.h"

#include "QtText.h"

#include "base/Utf8Path.h"
#include "ports/Prompter.h"
#include "view/LiveWindowModel.h"

#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QScreen>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace tvx::ui {
namespace {

QTableWidget* makeGrid(const QString& name, QWidget* parent)
{
    auto* grid = new QTableWidget(parent);
    grid->setObjectName(name);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setAlternatingRowColors(true);
    grid->verticalHeader()->setVisible(false);
    grid->verticalHeader()->setDefaultSectionSize(20);
    return grid;
}

QString documentsFolder()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return !documents.isEmpty() && QDir(documents).exists() ? documents : QDir::homePath();
}

} // namespace

FormHistory::FormHistory(Prompter& prompter, QWidget* parent) : QDialog(parent), m_prompter(prompter)
{
    setObjectName(QStringLiteral("frmHistory"));
    setModal(false);
    m_chooseTarget = [](QWidget* owner, const QString& proposed) {
        return QFileDialog::getSaveFileName(owner, qtTr(kHistoryExportCaption), proposed, QStringLiteral("CSV (*.csv)"));
    };

    auto* rows = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tabHistory"));
    const QString names[] = {QStringLiteral("grdSessions"), QStringLiteral("grdDays"), QStringLiteral("grdWeeks")};
    for (std::size_t page = 0; page < kHistoryPages.size(); ++page) {
        m_grids[page] = makeGrid(names[page], m_tabs);
        m_tabs->addTab(m_grids[page], QString());
    }
    rows->addWidget(m_tabs, 1);

    auto* buttons = new QHBoxLayout;
    auto* cmdExport = new QPushButton(this);
    cmdExport->setObjectName(QStringLiteral("cmdExport"));
    auto* cmdClose = new QPushButton(this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setDefault(true);
    buttons->addWidget(cmdExport);
    buttons->addStretch(1);
    buttons->addWidget(cmdClose);
    rows->addLayout(buttons);
    connect(cmdExport, &QPushButton::clicked, this, &FormHistory::cmdExport_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
    retranslate();

    const QRect work = QGuiApplication::primaryScreen()->availableGeometry();
    resize(std::min(800, work.width() - 40), std::min(440, work.height() - 80));
}

void FormHistory::load(const std::filesystem::path& historyFile)
{
    m_historyFile = historyFile;
    HistoryWindowData loaded = openHistoryWindow(historyFile);
    m_rows = std::move(loaded.rows);
    for (std::size_t page = 0; page < kHistoryPages.size(); ++page)
        fill(page, loaded.tables[page]);
    if (!m_fitted) {
        // The first time, as wide as the sessions' columns and the scroll bar need, never
        // wider than the screen; afterwards the player's size stays.
        m_fitted = true;
        const QRect work = QGuiApplication::primaryScreen()->availableGeometry();
        const QTableWidget* sessions = m_grids[0];
        const int columns = sessions->horizontalHeader()->length() + 2 * sessions->frameWidth() +
                            sessions->verticalScrollBar()->sizeHint().width();
        const QMargins margins = layout()->contentsMargins();
        // The tab page's own frame is a few pixels either side.
        const int wanted = columns + margins.left() + margins.right() + 8;
        resize(std::clamp(wanted, 480, work.width() - 40), height());
    }
    // Nothing to export from a file that could not be read.
    findChild<QPushButton*>(QStringLiteral("cmdExport"))->setEnabled(!loaded.error);
    if (loaded.error)
        m_prompter.message(*loaded.error, std::string(tvx::tr(kHistoryTitle)));
}

void FormHistory::retranslate()
{
    setWindowTitle(qtTr(kHistoryTitle));
    for (std::size_t page = 0; page < kHistoryPages.size(); ++page)
        m_tabs->setTabText(static_cast<int>(page), qtTr(kHistoryPages[page]));
    findChild<QPushButton*>(QStringLiteral("cmdExport"))->setText(qtTr(kHistoryExportCaption));
    findChild<QPushButton*>(QStringLiteral("cmdClose"))->setText(qtTr(kHistoryCloseCaption));
    // The rows as read last time, under headers in the new language.
    if (!m_historyFile.empty()) {
        const std::array<HistoryTable, 3> tables{historySessions(m_rows), historyDays(m_rows), historyWeeks(m_rows)};
        for (std::size_t page = 0; page < tables.size(); ++page)
            fill(page, tables[page]);
    }
}

void FormHistory::fill(std::size_t page, const HistoryTable& table)
{
    QTableWidget* grid = m_grids[page];
    grid->clear();
    grid->setColumnCount(static_cast<int>(table.headers.size()));
    grid->setRowCount(static_cast<int>(table.rows.size()));
    QStringList headers;
    for (const std::string& header : table.headers)
        headers << qtText(header);
    grid->setHorizontalHeaderLabels(headers);
    for (std::size_t row = 0; row < table.rows.size(); ++row)
        for (std::size_t column = 0; column < table.rows[row].size(); ++column) {
            auto* cell = new QTableWidgetItem(qtText(table.rows[row][column]));
            const bool date = column < kHistoryDateColumns[page];
            cell->setTextAlignment(Qt::AlignVCenter | (date ? Qt::AlignLeft : Qt::AlignRight));
            grid->setItem(static_cast<int>(row), static_cast<int>(column), cell);
        }
    grid->resizeColumnsToContents();
}

void FormHistory::cmdExport_Click()
{
    const QString proposed = documentsFolder() + QLatin1Char('/') + qtText(kHistoryExportName);
    const QString chosen = m_chooseTarget(this, proposed);
    if (chosen.isEmpty())
        return;
    if (const auto message = exportHistory(m_rows, utf8Path(coreText(chosen)), m_historyFile))
        m_prompter.message(*message, std::string(tvx::tr(kHistoryTitle)));
}

} // namespace tvx::ui
