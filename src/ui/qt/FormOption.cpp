#include "FormOption.h"

#include "CaptureImage.h"
#include "FormCalibrate.h"
#include "FormInputCheck.h"
#include "GlyphView.h"
#include "QtText.h"

#include "view/Placement.h"

#include "base/HeldFlag.h"
#include "config/ConfigFile.h"
#include "ports/Waiter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QScreen>
#include <QScrollArea>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace tvx::ui {
namespace {

constexpr int kPreviewScale = 3;

QString indexed(const char* name, int index)
{
    return QLatin1String(name) + QString::number(index);
}

QLabel* caption(std::string_view text)
{
    return new QLabel(qtText(text));
}

// A bold title over the rows that belong together, set apart from the rows above it.
QLabel* heading(std::string_view text)
{
    auto* label = caption(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    label->setContentsMargins(0, 8, 0, 0);
    return label;
}

QPixmap previewPixmap(const RegionPreview& preview)
{
    const QImage image = pixelImage(preview.width, preview.height, preview.pixels);
    if (image.isNull())
        return {};
    return QPixmap::fromImage(image.scaled(preview.width * kPreviewScale, preview.height * kPreviewScale));
}

// A page that scrolls where the screen is too small for it.
QScrollArea* scrolling(QWidget* page)
{
    auto* area = new QScrollArea;
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    return area;
}

} // namespace

FormOption::FormOption(ConfigFile& configFile, const CaptureBitmap* lastCapture, PatternCaptureServices capture,
                       QWidget* parent)
    : QDialog(parent), m_config(configFile), m_captureServices(capture),
      m_editor(configFile.settings(), lastCapture)
{
    setObjectName(QStringLiteral("FormOption"));
    setModal(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    build();
}

void FormOption::build()
{
    if (m_body) {
        // Out of the window at once, so that no name finds the old controls; deleted later,
        // since this may run in a handler of one of them.
        m_body->hide();
        m_body->setParent(nullptr);
        m_body->deleteLater();
        m_refreshers.clear();
    }
    setWindowTitle(qtText(kOptionsTitle));
    m_body = new QWidget(this);
    layout()->addWidget(m_body);

    m_tabs = new QTabWidget(m_body);
    m_tabs->setObjectName(QStringLiteral("tabOption"));
    m_tabs->addTab(scrolling(buildRegionsTab()), qtText(optionTabCaption(OptionTab::Regions)));
    m_tabs->addTab(scrolling(buildPatternsTab()), qtText(optionTabCaption(OptionTab::Patterns)));
    m_tabs->addTab(scrolling(buildRowsTab(OptionTab::Timing)), qtText(optionTabCaption(OptionTab::Timing)));
    m_tabs->addTab(scrolling(buildRowsTab(OptionTab::Files)), qtText(optionTabCaption(OptionTab::Files)));

    auto* buttons = new QHBoxLayout;
    const std::tuple<const char*, ShownText, int> commands[] = {
        {"cmdSave", kOptionsSaveCaption, ConfigFile::Save},
        {"cmdLoad", kOptionsLoadCaption, ConfigFile::Load},
        {"cmdInit", kOptionsInitCaption, ConfigFile::Defaults},
    };
    for (const auto& [name, text, mode] : commands) {
        auto* button = new QPushButton(qtText(text), m_body);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, mode = mode] { runConfigFile(mode); });
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    auto* close = new QPushButton(qtText(kOptionsCloseCaption), m_body);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    buttons->addWidget(close);

    auto* body = new QVBoxLayout(m_body);
    body->addWidget(m_tabs, 1);
    body->addLayout(buttons);
    m_buttons = buttons;
    refresh();
    m_fitted = false;
    fitToScreen();
}

void FormOption::fitToScreen()
{
    // As large as the largest page, but never larger than the screen, so the buttons
    // stay on it; the pages scroll instead. Placed over the main window, wholly on screen.
    QSize pages;
    for (int t = 0; t < m_tabs->count(); ++t)
        if (const auto* area = qobject_cast<QScrollArea*>(m_tabs->widget(t)))
            pages = pages.expandedTo(area->widget()->sizeHint());
    const QSize wanted =
        pages + QSize(48, m_tabs->tabBar()->sizeHint().height() + m_buttons->sizeHint().height() + 56);
    const QRect work = screen() ? screen()->availableGeometry() : QRect(QPoint(0, 0), wanted);
    std::optional<ViewRect> owner;
    if (const QWidget* main = parentWidget(); main != nullptr && main->isVisible()) {
        const QRect frame = main->window()->frameGeometry();
        owner = ViewRect{frame.x(), frame.y(), frame.width(), frame.height()};
    }
    // Room for the window's frame, which the work area must hold too.
    const ViewRect placed = placeOver(owner, wanted.width(), wanted.height(),
                                      {work.x(), work.y(), work.width() - 16, work.height() - 48});
    resize(placed.width, placed.height);
    move(placed.x, placed.y);
}

void FormOption::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // The previews have their pictures now; the first showing fits the window to them.
    if (!m_fitted) {
        m_fitted = true;
        fitToScreen();
    }
}

FormOption::~FormOption() = default;

void FormOption::setCapture(const CaptureBitmap& bitmap)
{
    m_editor.setCapture(bitmap);
    refreshPreviews();
}

// ---- building ----

QPushButton* FormOption::numberButton(const NumberField& field)
{
    auto* button = new QPushButton;
    button->setObjectName(qtText(field.name));
    button->setAutoDefault(false);
    button->setFixedWidth(80);
    button->setToolTip(qtText(field.prompt));
    connect(button, &QPushButton::clicked, this, [this, &field] { askNumber(field); });
    m_refreshers.push_back([this, button, &field] { button->setText(qtText(m_editor.numberText(field))); });
    return button;
}

QCheckBox* FormOption::flagBox(const FlagField& field)
{
    auto* box = new QCheckBox(qtText(field.caption));
    box->setObjectName(qtText(field.name));
    connect(box, &QCheckBox::toggled, this, [this, &field](bool on) {
        m_editor.setFlag(field, on);
        changed();
    });
    m_refreshers.push_back([this, box, &field] {
        const QSignalBlocker quiet(box);
        box->setEnabled(m_editor.flagAvailable(field));
        box->setChecked(m_editor.flag(field));
    });
    return box;
}

QLineEdit* FormOption::textEdit(const TextField& field)
{
    auto* edit = new QLineEdit;
    edit->setObjectName(qtText(field.name));
    // The file has no quoting: a comma would split the value when it is read back.
    edit->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^,]*")), edit));
    connect(edit, &QLineEdit::editingFinished, this, [this, edit, &field] {
        m_editor.setText(field, coreText(edit->text()));
        changed();
    });
    m_refreshers.push_back([this, edit, &field] { edit->setText(qtText(m_editor.text(field))); });
    return edit;
}

QComboBox* FormOption::choiceBox(const ChoiceField& field)
{
    auto* box = new QComboBox;
    box->setObjectName(qtText(field.name));
    connect(box, &QComboBox::currentIndexChanged, this, [this, &field](int index) {
        if (index < 0)
            return;
        m_editor.choose(field, static_cast<std::size_t>(index));
        changed();
    });
    m_refreshers.push_back([this, box, &field] {
        const QSignalBlocker quiet(box);
        box->clear();
        for (const ChoiceField::Choice& choice : choicesFor(field, m_editor.settings()))
            box->addItem(qtText(choice.caption));
        box->setCurrentIndex(static_cast<int>(chosenIndex(field, m_editor.settings())));
    });
    return box;
}

QPushButton* FormOption::browseButton(const TextField& field)
{
    auto* button = new QPushButton(qtText(kBrowseCaption));
    button->setObjectName(qtText(field.browseName));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, &field] { browse(field); });
    return button;
}

QWidget* FormOption::buildRegionsTab()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    for (int r = 0; r < kRegionCount; ++r) {
        const auto i = static_cast<std::size_t>(r);
        auto* group = new QGroupBox(qtText(regionCaption(r)));
        auto* grid = new QGridLayout(group);
        int order = 0;
        for (const NumberField* field : regionFields(r)) {
            grid->addWidget(caption(field->caption), order / 4, (order % 4) * 2, Qt::AlignRight);
            grid->addWidget(numberButton(*field), order / 4, (order % 4) * 2 + 1);
            ++order;
        }
        m_picCapture[i] = new QLabel;
        m_picCapture[i]->setObjectName(indexed("picCapture", r));
        m_picCapture[i]->setMinimumHeight(9 * kPreviewScale + 4);
        m_picBinary[i] = new GlyphView(GlyphView::Mode::Show);
        m_picBinary[i]->setObjectName(indexed("picBinary", r));
        m_picBinary[i]->setPixelSize(kPreviewScale);
        m_lblResult[i] = new QLabel;
        m_lblResult[i]->setObjectName(indexed("lblResult", r));
        // Previews in rows of their own, so a wide region does not widen the columns.
        auto* picture = new QHBoxLayout;
        picture->addWidget(m_picCapture[i]);
        picture->addStretch(1);
        auto* binary = new QHBoxLayout;
        binary->addWidget(m_picBinary[i]);
        binary->addSpacing(16);
        binary->addWidget(m_lblResult[i]);
        binary->addStretch(1);
        grid->addWidget(caption(kPictureCaption), 2, 0, Qt::AlignRight);
        grid->addLayout(picture, 2, 1, 1, 8);
        grid->addWidget(caption(kBinaryCaption), 3, 0, Qt::AlignRight);
        grid->addLayout(binary, 3, 1, 1, 8);
        grid->setColumnStretch(8, 1);
        layout->addWidget(group);
    }
    auto* captureRow = new QHBoxLayout;
    m_cmdCapture = new QPushButton(qtText(kPatternCaptureCaption));
    m_cmdCapture->setObjectName(QStringLiteral("cmdCapture"));
    m_cmdCapture->setAutoDefault(false);
    m_cmdCapture->setEnabled(m_captureServices.screen && m_captureServices.waiter && m_captureServices.clock);
    m_cmdCapture->setToolTip(qtText(kPatternCaptureTip));
    connect(m_cmdCapture, &QPushButton::clicked, this, &FormOption::cmdCapture_Click);
    m_lblCaptureStatus = new QLabel;
    m_lblCaptureStatus->setObjectName(QStringLiteral("lblCaptureStatus"));
    captureRow->addWidget(m_cmdCapture);
    captureRow->addWidget(m_lblCaptureStatus, 1);
    // Regions dragged on the screen and templates learnt from it, kept only when confirmed.
    auto* calibrate = new QPushButton(qtText(kCalibrateCaption));
    calibrate->setObjectName(QStringLiteral("cmdCalibrate"));
    calibrate->setAutoDefault(false);
    connect(calibrate, &QPushButton::clicked, this, [this] {
        FormCalibrate dialog(m_editor.settings(), capture(), m_captureServices, m_config.log(), this);
        if (dialog.exec() != QDialog::Accepted)
            return;
        m_config.sizeBuffers();
        refresh();
        changed();
    });
    captureRow->addWidget(calibrate);
    layout->addLayout(captureRow);
    layout->addStretch(1);
    return page;
}

QWidget* FormOption::buildPatternsTab()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);

    auto* regions = new QHBoxLayout;
    regions->addWidget(caption(kPatternRegionCaption));
    for (int r = 0; r < kRegionCount; ++r) {
        auto* option = new QRadioButton(qtText(regionCaption(r)));
        option->setObjectName(indexed("optPatternRegion", r));
        connect(option, &QRadioButton::toggled, this, [this, r](bool on) {
            if (on)
                selectPattern(r, m_editor.patternIndex());
        });
        m_optPatternRegion[static_cast<std::size_t>(r)] = option;
        regions->addWidget(option);
    }
    regions->addStretch(1);
    layout->addLayout(regions);

    auto* tiles = new QGroupBox(qtText(kPatternTilesCaption));
    auto* tileGrid = new QGridLayout(tiles);
    for (int j = 0; j < kPatternCount; ++j) {
        auto* tile = new GlyphView(GlyphView::Mode::Button);
        tile->setObjectName(indexed("picPattern", j));
        tile->setPixelSize(4);
        connect(tile, &GlyphView::clicked, this, [this, j] { selectPattern(m_editor.patternRegion(), j); });
        m_picPattern[static_cast<std::size_t>(j)] = tile;
        tileGrid->addWidget(tile, 0, j, Qt::AlignHCenter | Qt::AlignBottom);
        auto* name = caption(patternName(j));
        name->setAlignment(Qt::AlignHCenter);
        tileGrid->addWidget(name, 1, j);
    }
    tileGrid->setColumnStretch(kPatternCount, 1);
    layout->addWidget(tiles);
    layout->addWidget(patternEditor());
    layout->addWidget(columnPicker());
    layout->addStretch(1);
    m_optPatternRegion[0]->setChecked(true);
    return page;
}

QWidget* FormOption::patternEditor()
{
    auto* editor = new QGroupBox(qtText(kPatternEditCaption));
    auto* editorLayout = new QGridLayout(editor);
    m_lblEditor = new QLabel;
    m_picEditor = new GlyphView(GlyphView::Mode::Edit);
    m_picEditor->setObjectName(QStringLiteral("picEditor"));
    m_picEditor->setPixelSize(16);
    m_picEditor->setToolTip(qtText(kPatternEditTip));
    connect(m_picEditor, &GlyphView::columnsEdited, this,
            [this] { editPattern([this] { m_editor.storePattern(m_picEditor->columns()); }); });
    auto* tools = new QVBoxLayout;
    const std::pair<const char*, ShownText> toolButtons[] = {
        {"cmdAddColumn", kAddColumnCaption},
        {"cmdRemoveColumn", kRemoveColumnCaption},
        {"cmdClearPattern", kClearPatternCaption},
    };
    for (const auto& [name, text] : toolButtons) {
        auto* button = new QPushButton(qtText(text));
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        tools->addWidget(button);
        const std::string which = name;
        connect(button, &QPushButton::clicked, this, [this, which] {
            editPattern([this, &which] {
                if (which == "cmdAddColumn")
                    m_editor.addColumn();
                else if (which == "cmdRemoveColumn")
                    m_editor.removeColumn();
                else
                    m_editor.clearPattern();
            });
        });
    }
    tools->addStretch(1);
    m_lblWidthNote = new QLabel;
    m_lblWidthNote->setObjectName(QStringLiteral("lblWidthNote"));
    m_txtPattern = new QLineEdit;
    m_txtPattern->setObjectName(QStringLiteral("txtPattern"));
    m_txtPattern->setFont(QFont(QStringLiteral("monospace")));
    m_txtPattern->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9A-Fa-f]*")), m_txtPattern));
    connect(m_txtPattern, &QLineEdit::editingFinished, this, [this] {
        if (m_editor.setPatternText(coreText(m_txtPattern->text())))
            editPattern([] {});
        else
            m_lblWidthNote->setText(qtText(m_editor.patternView().note));
    });
    editorLayout->addWidget(m_lblEditor, 0, 0, 1, 2);
    editorLayout->addWidget(m_picEditor, 1, 0, Qt::AlignLeft | Qt::AlignTop);
    editorLayout->addLayout(tools, 1, 1);
    editorLayout->addWidget(m_lblWidthNote, 2, 0, 1, 2);
    editorLayout->addWidget(caption(kPatternTextCaption), 3, 0, 1, 2);
    editorLayout->addWidget(m_txtPattern, 4, 0, 1, 2);
    editorLayout->setColumnStretch(0, 1);
    return editor;
}

QWidget* FormOption::columnPicker()
{
    auto* take = new QGroupBox(qtText(kTakeColumnsGroupCaption));
    auto* takeLayout = new QVBoxLayout(take);
    QLabel* help = caption(kTakeColumnsHelp);
    help->setWordWrap(true);
    takeLayout->addWidget(help);
    m_picColumns = new GlyphView(GlyphView::Mode::Select);
    m_picColumns->setObjectName(QStringLiteral("picColumns"));
    m_picColumns->setPixelSize(6);
    auto* scroll = new QScrollArea;
    scroll->setWidget(m_picColumns);
    scroll->setWidgetResizable(false);
    scroll->setMinimumHeight(16 * 6 + 24);
    scroll->setFrameShape(QFrame::NoFrame);
    takeLayout->addWidget(scroll);
    auto* takeRow = new QHBoxLayout;
    auto* cmdTake = new QPushButton(qtText(kTakeColumnsCaption));
    cmdTake->setObjectName(QStringLiteral("cmdTakeColumns"));
    cmdTake->setAutoDefault(false);
    cmdTake->setEnabled(false);
    connect(cmdTake, &QPushButton::clicked, this, [this] {
        editPattern([this] { m_editor.takeColumns(m_picColumns->selectionStart(), m_picColumns->selectionLength()); });
    });
    connect(m_picColumns, &GlyphView::selectionChanged, cmdTake,
            [this, cmdTake] { cmdTake->setEnabled(m_picColumns->selectionLength() > 0); });
    m_lblPatternResult = new QLabel;
    m_lblPatternResult->setObjectName(QStringLiteral("lblPatternResult"));
    takeRow->addWidget(cmdTake);
    takeRow->addWidget(m_lblPatternResult, 1);
    takeLayout->addLayout(takeRow);
    return take;
}

QWidget* FormOption::buildRowsTab(OptionTab tab)
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    int row = 0;
    for (const OptionRow& line : optionRows(tab)) {
        if (!line.heading.empty()) {
            grid->addWidget(heading(line.heading), row++, 0, 1, 4);
            continue;
        }
        if (line.flag)
            grid->addWidget(flagBox(*line.flag), row, 0);
        // Captions end where their editors begin; without a switch they may use its room.
        if (!line.caption().empty())
            grid->addWidget(caption(line.caption()), row, line.flag ? 1 : 0, 1, line.flag ? 1 : 2, Qt::AlignRight);
        if (line.number)
            grid->addWidget(numberButton(*line.number), row, 2, Qt::AlignLeft);
        if (line.choice)
            grid->addWidget(choiceBox(*line.choice), row, 2);
        if (line.text) {
            grid->addWidget(textEdit(*line.text), row, 2);
            if (line.text->browse != TextField::Browse::None)
                grid->addWidget(browseButton(*line.text), row, 3);
        }
        ++row;
    }
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(2, 1);
    return page;
}

// ---- showing ----

void FormOption::refresh()
{
    m_editor.refresh();
    for (const auto& refresher : m_refreshers)
        refresher();
    refreshPreviews();
}

void FormOption::refreshPreviews()
{
    for (int r = 0; r < kRegionCount; ++r) {
        const auto i = static_cast<std::size_t>(r);
        const RegionPreview& preview = m_editor.previews()[i];
        m_picCapture[i]->setPixmap(previewPixmap(preview));
        m_picBinary[i]->setRows(preview.rows);
        m_picBinary[i]->setColumns(preview.columns);
        m_lblResult[i]->setText(qtText(m_editor.previewResult(r)));
    }
    const PatternView& view = m_editor.patternView();
    for (std::size_t k = 0; k < kPatternCount; ++k) {
        m_picPattern[k]->setRows(view.rows);
        m_picPattern[k]->setColumns(view.tiles[k]);
        m_picPattern[k]->setChecked(static_cast<int>(k) == m_editor.patternIndex());
    }
    m_picEditor->setRows(view.rows);
    m_picEditor->setColumns(view.editor);
    m_lblEditor->setText(qtText(view.editorCaption));
    m_lblWidthNote->setText(qtText(view.note));
    m_txtPattern->setText(qtText(view.text));
    m_picColumns->setRows(view.rows);
    m_picColumns->setColumns(view.captureColumns);
    m_picColumns->adjustSize(); // it sits in a scroll area, not in a layout
    m_picColumns->setSelectionWidth(view.cellWidth);
    m_lblPatternResult->setText(qtText(view.captureResult));
}

void FormOption::selectPattern(int region, int index)
{
    if (region != m_editor.patternRegion())
        m_picColumns->setSelection(-1, 0);
    m_editor.selectPattern(region, index);
    refreshPreviews();
}

// ---- editing ----

void FormOption::askNumber(const NumberField& field)
{
    const OptionsEditor::NumberQuestion q = m_editor.question(field);
    const double answer = m_config.prompter().askNumber(q.limitA, q.limitB, q.proposed, q.step, q.prompt, q.title);
    if (!m_editor.answer(field, answer))
        return;
    if (field.recognition)
        m_config.sizeBuffers();
    refresh();
    changed();
}

template <typename Edit>
void FormOption::editPattern(Edit edit)
{
    edit();
    refreshPreviews();
    changed();
}

void FormOption::changed()
{
    emit settingsChanged();
}

void FormOption::runConfigFile(int mode)
{
    const std::optional<std::string> message = m_editor.runConfigFile(m_config, mode);
    refresh();
    changed();
    if (message)
        m_config.prompter().message(*message, std::string(kOptionsTitle));
}

void FormOption::reject()
{
    if (m_editor.hasUnsavedEdits() &&
        m_config.prompter().askYesNo(OptionsEditor::unsavedQuestion(), std::string(kOptionsTitle)))
        runConfigFile(ConfigFile::Save);
    const std::optional<std::string> languageChanged = m_editor.apply();
    if (languageChanged)
        m_config.prompter().message(*languageChanged, std::string(kOptionsTitle));
    QDialog::reject();
    if (languageChanged) {
        build(); // shown again later, in the new language
        changed();
    }
}

void FormOption::browse(const TextField& field)
{
    const QString current = qtText(m_editor.text(field));
    const QString chosen =
        field.browse == TextField::Browse::Folder
            ? QFileDialog::getExistingDirectory(this, qtText(kSaveFolderDialogTitle), current)
            : QFileDialog::getOpenFileName(this, qtText(kStartUpDialogTitle), current,
                                           qtText(kAllFilesName) + QStringLiteral(" (*);;") + qtText(kApplicationsName) +
                                               QStringLiteral(" (*.exe *.bat *.cmd *.lnk)"));
    if (chosen.isEmpty())
        return;
    m_editor.setText(field, coreText(QDir::toNativeSeparators(chosen)));
    refresh();
    changed();
}

// ---- pattern capture ----

void FormOption::setDebugSwitch(DebugSwitch debugSwitch)
{
    m_editor.setDebugSwitch(std::move(debugSwitch));
    refresh();
}

void FormOption::cmdCapture_Click()
{
    QPointer<FormOption> alive(this);
    // No reading may replace the pixels meanwhile; put back however this ends.
    const HeldFlag holdCycles(m_captureServices.cycleSkip);
    m_cmdCapture->setEnabled(false);
    m_lblCaptureStatus->setText(qtText(OptionsEditor::beginCapture(m_config)));
    // The wait keeps events flowing, so the window may be gone when it returns.
    m_captureServices.waiter->WaitMs(10000);
    if (!alive)
        return;
    m_lblCaptureStatus->setText(
        qtText(m_editor.capturePattern(*m_captureServices.screen, *m_captureServices.clock, m_config)));
    refreshPreviews();
    m_cmdCapture->setEnabled(true);
}

} // namespace tvx::ui
