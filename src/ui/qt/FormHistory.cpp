#include "FormHistory.h"

#include "QtText.h"

#include "base/Utf8Path.h"
#include "measurement/SessionHistory.h"
#include "ports/Prompter.h"
#include "view/HistoryView.h"
#include "view/LiveWindows.h"

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
    setWindowTitle(qtText(kHistoryTitle));
    setModal(false);
    m_chooseTarget = [](QWidget* owner, const QString& proposed) {
        return QFileDialog::getSaveFileName(owner, qtText(kHistoryExportCaption), proposed, qtText(kHistoryExportFilter));
    };

    auto* rows = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tabHistory"));
    m_grdSessions = makeGrid(QStringLiteral("grdSessions"), m_tabs);
    m_grdDays = makeGrid(QStringLiteral("grdDays"), m_tabs);
    m_grdWeeks = makeGrid(QStringLiteral("grdWeeks"), m_tabs);
    QTableWidget* const grids[] = {m_grdSessions, m_grdDays, m_grdWeeks};
    for (std::size_t tab = 0; tab < kHistoryTabCaptions.size(); ++tab)
        m_tabs->addTab(grids[tab], qtText(kHistoryTabCaptions[tab]));
    rows->addWidget(m_tabs, 1);

    auto* buttons = new QHBoxLayout;
    auto* cmdExport = new QPushButton(qtText(kHistoryExportCaption), this);
    cmdExport->setObjectName(QStringLiteral("cmdExport"));
    auto* cmdClose = new QPushButton(qtText(kHistoryCloseCaption), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setDefault(true);
    buttons->addWidget(cmdExport);
    buttons->addStretch(1);
    buttons->addWidget(cmdClose);
    rows->addLayout(buttons);
    connect(cmdExport, &QPushButton::clicked, this, &FormHistory::cmdExport_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);

    const QRect work = QGuiApplication::primaryScreen()->availableGeometry();
    resize(std::min(800, work.width() - 40), std::min(440, work.height() - 80));
}

void FormHistory::load(const std::filesystem::path& historyFile)
{
    m_historyFile = historyFile;
    HistoryLoad loaded = loadHistoryForWindow(historyFile);
    m_rows = std::move(loaded.rows);
    fill(m_grdSessions, historySessions(m_rows));
    fill(m_grdDays, historyDays(m_rows));
    fill(m_grdWeeks, historyWeeks(m_rows));
    if (!m_fitted) {
        // The first time, as wide as the sessions' columns and the scroll bar need, never
        // wider than the screen; afterwards the player's size stays.
        m_fitted = true;
        const QRect work = QGuiApplication::primaryScreen()->availableGeometry();
        const int columns = m_grdSessions->horizontalHeader()->length() + 2 * m_grdSessions->frameWidth() +
                            m_grdSessions->verticalScrollBar()->sizeHint().width();
        const QMargins margins = layout()->contentsMargins();
        // The tab page's own frame is a few pixels either side.
        const int wanted = columns + margins.left() + margins.right() + 8;
        resize(std::clamp(wanted, 480, work.width() - 40), height());
    }
    if (loaded.message)
        m_prompter.message(*loaded.message, std::string(kHistoryTitle));
}

void FormHistory::fill(QTableWidget* grid, const HistoryTable& table)
{
    grid->clear();
    grid->setColumnCount(static_cast<int>(table.headers.size()));
    grid->setRowCount(static_cast<int>(table.rows.size()));
    QStringList headers;
    for (const std::string& header : table.headers)
        headers << qtText(header);
    grid->setHorizontalHeaderLabels(headers);
    for (std::size_t row = 0; row < table.rows.size(); ++row)
        for (std::size_t column = 0; column < table.rows[row].size(); ++column) {
            const QString text = qtText(table.rows[row][column]);
            auto* cell = new QTableWidgetItem(text);
            // Dates and times read from the left, amounts line up on the right.
            cell->setTextAlignment(Qt::AlignVCenter |
                                   (text.contains(QLatin1Char('/')) ? Qt::AlignLeft : Qt::AlignRight));
            grid->setItem(static_cast<int>(row), static_cast<int>(column), cell);
        }
    grid->resizeColumnsToContents();
}

void FormHistory::cmdExport_Click()
{
    const QString proposed = documentsFolder() + QLatin1Char('/') + qtText(kHistoryFileName);
    const QString chosen = m_chooseTarget(this, proposed);
    if (chosen.isEmpty())
        return;
    if (const auto message = exportHistory(utf8Path(coreText(chosen)), m_historyFile, m_rows))
        m_prompter.message(*message, std::string(kHistoryTitle));
}

} // namespace tvx::ui
