#include "FormOption.h"

#include "CaptureImage.h"
#include "FormCalibrate.h"
#include "FormInputCheck.h"
#include "GlyphView.h"
#include "QtText.h"

#include "config/ConfigFile.h"
#include "config/PatternColumns.h"
#include "ports/Clock.h"
#include "ports/ScreenSource.h"
#include "ports/Waiter.h"
#include "recognition/ScreenRecognizer.h"
#include "base/Utf8Path.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QVBoxLayout>

#include <cmath>
#include <cstdio>

namespace tvx::ui {
namespace {

const std::array<QString, kRegionCount> kRegionNames{QStringLiteral("Lv (1)"), QStringLiteral("Exp (2)"),
                                                      QStringLiteral("マネー (3)")};
constexpr int kPreviewScale = 3;

QString indexed(const char* name, int index)
{
    return QLatin1String(name) + QString::number(index);
}

QLabel* caption(const QString& text)
{
    return new QLabel(text);
}

std::vector<std::uint16_t> columnsOf(const std::string& groups)
{
    return decodePatternColumns(groups).value_or(std::vector<std::uint16_t>{});
}

// Rows worth showing for a region's glyphs: the cell, the region and any ink, at most 16.
int glyphRows(const Settings& s, int region)
{
    const auto r = static_cast<std::size_t>(region);
    int rows = std::max(s.ReferenceSize[r].Height, s.CaptureRegion[r].SizeY);
    for (const std::string& pattern : s.PatternStrings[r])
        for (const std::uint16_t column : columnsOf(pattern))
            for (int y = 15; y >= rows; --y)
                if (column & (1u << y)) {
                    rows = y + 1;
                    break;
                }
    return std::clamp(rows, 1, 16);
}

QString patternName(int index)
{
    return index == kDelimiterIndex ? QStringLiteral("区切り") : QString::number(index);
}

} // namespace

FormOption::FormOption(ConfigFile& configFile, const CaptureBitmap* lastCapture, PatternCaptureServices capture,
                       QWidget* parent)
    : QDialog(parent), m_config(configFile), m_settings(configFile.settings()), m_captureServices(capture)
{
    setObjectName(QStringLiteral("FormOption"));
    setWindowTitle(QStringLiteral("設定"));
    setModal(false);
    if (lastCapture)
        m_capture = *lastCapture;

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("tabOption"));
    m_tabs->addTab(buildRegionsTab(), QStringLiteral("キャプチャ領域"));
    m_tabs->addTab(buildPatternsTab(), QStringLiteral("認識パターン"));
    m_tabs->addTab(buildTimingTab(), QStringLiteral("動作"));
    m_tabs->addTab(buildFilesTab(), QStringLiteral("記録・起動"));

    auto* buttons = new QHBoxLayout;
    const std::tuple<const char*, QString, int, const char*> commands[] = {
        {"cmdSave", QStringLiteral("保存"), ConfigFile::Save, "Option Save "},
        {"cmdLoad", QStringLiteral("読込み"), ConfigFile::Load, "Option Load "},
        {"cmdInit", QStringLiteral("初期化"), ConfigFile::Defaults, "Option Initialize "},
    };
    for (const auto& [name, text, mode, command] : commands) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, mode = mode, command = command] {
            runConfigFile(mode, command);
        });
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    auto* close = new QPushButton(QStringLiteral("閉じる"), this);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    buttons->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addLayout(buttons);
    refresh();
}

FormOption::~FormOption() = default;

void FormOption::setCapture(const CaptureBitmap& bitmap)
{
    m_capture = bitmap;
    refreshPreviews();
}

// ---- building ----

QPushButton* FormOption::numberButton(const QString& name, const QString& prompt, int lower, int upper,
                                      std::function<std::int32_t&(Settings&)> value, bool recognition)
{
    auto* button = new QPushButton;
    button->setObjectName(name);
    button->setAutoDefault(false);
    button->setFixedWidth(80);
    button->setToolTip(prompt);
    const std::size_t index = m_numbers.size();
    m_numbers.push_back({button, prompt, lower, upper, std::move(value), recognition});
    connect(button, &QPushButton::clicked, this, [this, index] { askNumber(m_numbers[index]); });
    return button;
}

QCheckBox* FormOption::flagBox(const QString& name, const QString& text, bool Settings::*flag)
{
    auto* box = new QCheckBox(text);
    box->setObjectName(name);
    connect(box, &QCheckBox::toggled, this, [this, flag](bool on) {
        m_settings.*flag = on;
        changed();
    });
    m_refreshers.push_back([this, box, flag] {
        const QSignalBlocker quiet(box);
        box->setChecked(m_settings.*flag);
    });
    return box;
}

QLineEdit* FormOption::textEdit(const QString& name, std::function<std::string&(Settings&)> text)
{
    auto* edit = new QLineEdit;
    edit->setObjectName(name);
    // The file has no quoting: a comma would split the value when it is read back.
    edit->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^,]*")), edit));
    connect(edit, &QLineEdit::editingFinished, this, [this, edit, text] {
        text(m_settings) = coreText(edit->text().trimmed());
        changed();
    });
    m_refreshers.push_back([this, edit, text] { edit->setText(qtText(text(m_settings))); });
    return edit;
}

QWidget* FormOption::buildRegionsTab()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    for (int r = 0; r < kRegionCount; ++r) {
        const auto i = static_cast<std::size_t>(r);
        auto* group = new QGroupBox(kRegionNames[i]);
        auto* grid = new QGridLayout(group);
        const auto region = [i](Settings& s) -> CaptureRegionRect& { return s.CaptureRegion[i]; };
        const std::tuple<const char*, QString, QString, int, int, std::function<std::int32_t&(Settings&)>> fields[] = {
            {"cmdStartX", QStringLiteral("始点 X"), QStringLiteral("キャプチャー始点X値を入力してください"), 0, 9999,
             [region](Settings& s) -> std::int32_t& { return region(s).StartX; }},
            {"cmdStartY", QStringLiteral("始点 Y"), QStringLiteral("キャプチャー始点Y値を入力してください"), 0, 9999,
             [region](Settings& s) -> std::int32_t& { return region(s).StartY; }},
            {"cmdSizeX", QStringLiteral("幅"), QStringLiteral("キャプチャー幅を入力してください"), 1, 2000,
             [region](Settings& s) -> std::int32_t& { return region(s).SizeX; }},
            {"cmdSizeY", QStringLiteral("高さ"), QStringLiteral("キャプチャー高さを入力してください（16まで）"), 1, 16,
             [region](Settings& s) -> std::int32_t& { return region(s).SizeY; }},
            {"cmdBinaryThreshold", QStringLiteral("２値化境界値"), QStringLiteral("画像２値化境界値を入力してください"), 0,
             255, [i](Settings& s) -> std::int32_t& { return s.BinaryThreshold[i]; }},
            {"cmdBinaryMask", QStringLiteral("マスク値"),
             QStringLiteral("マスク値を入力してください（-1 はマスクなし）"), -1, 255,
             [i](Settings& s) -> std::int32_t& { return s.BinaryMask[i]; }},
            {"cmdReferenceWidth", QStringLiteral("基準幅"), QStringLiteral("基準画像の幅（列数）を入力してください"), 1,
             64, [i](Settings& s) -> std::int32_t& { return s.ReferenceSize[i].Width; }},
            {"cmdReferenceHeight", QStringLiteral("基準高さ"), QStringLiteral("基準画像の高さを入力してください"), 1, 16,
             [i](Settings& s) -> std::int32_t& { return s.ReferenceSize[i].Height; }},
        };
        int column = 0;
        for (const auto& [name, text, prompt, lower, upper, value] : fields) {
            const int row = column / 4;
            const int col = (column % 4) * 2;
            grid->addWidget(caption(text), row, col, Qt::AlignRight);
            grid->addWidget(numberButton(indexed(name, r), prompt, lower, upper, value, true), row, col + 1);
            ++column;
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
        grid->addWidget(caption(QStringLiteral("画像")), 2, 0, Qt::AlignRight);
        grid->addLayout(picture, 2, 1, 1, 8);
        grid->addWidget(caption(QStringLiteral("２値化")), 3, 0, Qt::AlignRight);
        grid->addLayout(binary, 3, 1, 1, 8);
        grid->setColumnStretch(8, 1);
        layout->addWidget(group);
    }
    auto* captureRow = new QHBoxLayout;
    m_cmdCapture = new QPushButton(QStringLiteral("10秒後にキャプチャ"));
    m_cmdCapture->setObjectName(QStringLiteral("cmdCapture"));
    m_cmdCapture->setAutoDefault(false);
    m_cmdCapture->setEnabled(m_captureServices.screen && m_captureServices.waiter && m_captureServices.clock);
    m_cmdCapture->setToolTip(QStringLiteral("10秒のうちにゲームを前面に出してください。画面を保存し、各領域を表示します。"));
    connect(m_cmdCapture, &QPushButton::clicked, this, &FormOption::cmdCapture_Click);
    m_lblCaptureStatus = new QLabel;
    m_lblCaptureStatus->setObjectName(QStringLiteral("lblCaptureStatus"));
    captureRow->addWidget(m_cmdCapture);
    captureRow->addWidget(m_lblCaptureStatus, 1);
    // Regions dragged on the screen and templates learnt from it, kept only when confirmed.
    auto* calibrate = new QPushButton(QStringLiteral("画面から学習…"));
    calibrate->setObjectName(QStringLiteral("cmdCalibrate"));
    calibrate->setAutoDefault(false);
    connect(calibrate, &QPushButton::clicked, this, [this] {
        FormCalibrate dialog(m_settings, capture(), m_captureServices, m_config.log(), this);
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
    regions->addWidget(caption(QStringLiteral("領域：")));
    for (int r = 0; r < kRegionCount; ++r) {
        auto* option = new QRadioButton(kRegionNames[static_cast<std::size_t>(r)]);
        option->setObjectName(indexed("optPatternRegion", r));
        connect(option, &QRadioButton::toggled, this, [this, r](bool on) {
            if (on)
                selectPattern(r, m_patternIndex);
        });
        m_optPatternRegion[static_cast<std::size_t>(r)] = option;
        regions->addWidget(option);
    }
    regions->addStretch(1);
    layout->addLayout(regions);

    auto* tiles = new QGroupBox(QStringLiteral("パターン（クリックで編集）"));
    auto* tileGrid = new QGridLayout(tiles);
    for (int j = 0; j < kPatternCount; ++j) {
        auto* tile = new GlyphView(GlyphView::Mode::Button);
        tile->setObjectName(indexed("picPattern", j));
        tile->setPixelSize(4);
        connect(tile, &GlyphView::clicked, this, [this, j] { selectPattern(m_patternRegion, j); });
        m_picPattern[static_cast<std::size_t>(j)] = tile;
        tileGrid->addWidget(tile, 0, j, Qt::AlignHCenter | Qt::AlignBottom);
        auto* name = caption(patternName(j));
        name->setAlignment(Qt::AlignHCenter);
        tileGrid->addWidget(name, 1, j);
    }
    tileGrid->setColumnStretch(kPatternCount, 1);
    layout->addWidget(tiles);

    auto* editor = new QGroupBox(QStringLiteral("編集"));
    auto* editorLayout = new QGridLayout(editor);
    m_lblEditor = new QLabel;
    m_picEditor = new GlyphView(GlyphView::Mode::Edit);
    m_picEditor->setObjectName(QStringLiteral("picEditor"));
    m_picEditor->setPixelSize(16);
    m_picEditor->setToolTip(QStringLiteral("クリックで点を描く・消す。ドラッグで続けて描けます。"));
    connect(m_picEditor, &GlyphView::columnsEdited, this, [this] { storePattern(m_picEditor->columns()); });
    auto* tools = new QVBoxLayout;
    const std::pair<const char*, QString> toolButtons[] = {
        {"cmdAddColumn", QStringLiteral("右に列を追加")},
        {"cmdRemoveColumn", QStringLiteral("右端の列を削除")},
        {"cmdClearPattern", QStringLiteral("すべて消す")},
    };
    for (const auto& [name, text] : toolButtons) {
        auto* button = new QPushButton(text);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        tools->addWidget(button);
        const std::string which = name;
        connect(button, &QPushButton::clicked, this, [this, which] {
            std::vector<std::uint16_t> columns = m_picEditor->columns();
            if (which == "cmdAddColumn")
                columns.push_back(0);
            else if (which == "cmdRemoveColumn" && !columns.empty())
                columns.pop_back();
            else if (which == "cmdClearPattern")
                std::fill(columns.begin(), columns.end(), std::uint16_t{0});
            storePattern(columns);
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
        const std::optional<std::vector<std::uint16_t>> columns = decodePatternColumns(coreText(m_txtPattern->text()));
        if (columns)
            storePattern(*columns);
        else
            m_lblWidthNote->setText(QStringLiteral("変換文字列は16進数4桁ずつ（1列に4桁）です。"));
    });
    editorLayout->addWidget(m_lblEditor, 0, 0, 1, 2);
    editorLayout->addWidget(m_picEditor, 1, 0, Qt::AlignLeft | Qt::AlignTop);
    editorLayout->addLayout(tools, 1, 1);
    editorLayout->addWidget(m_lblWidthNote, 2, 0, 1, 2);
    editorLayout->addWidget(caption(QStringLiteral("変換文字列（上級者向け）：")), 3, 0, 1, 2);
    editorLayout->addWidget(m_txtPattern, 4, 0, 1, 2);
    editorLayout->setColumnStretch(0, 1);
    layout->addWidget(editor);

    auto* take = new QGroupBox(QStringLiteral("キャプチャ画像から取り込む"));
    auto* takeLayout = new QVBoxLayout(take);
    takeLayout->addWidget(caption(QStringLiteral(
        "最後のキャプチャをこの領域の境界値で２値化した画像です。数字の左端をクリックすると基準幅の列が選ばれます"
        "（ドラッグで範囲を変えられます）。")));
    qobject_cast<QLabel*>(takeLayout->itemAt(0)->widget())->setWordWrap(true);
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
    auto* cmdTake = new QPushButton(QStringLiteral("選んだ列をこのパターンにする"));
    cmdTake->setObjectName(QStringLiteral("cmdTakeColumns"));
    cmdTake->setAutoDefault(false);
    cmdTake->setEnabled(false);
    connect(cmdTake, &QPushButton::clicked, this, &FormOption::cmdTakeColumns_Click);
    connect(m_picColumns, &GlyphView::selectionChanged, cmdTake,
            [this, cmdTake] { cmdTake->setEnabled(m_picColumns->selectionLength() > 0); });
    m_lblPatternResult = new QLabel;
    m_lblPatternResult->setObjectName(QStringLiteral("lblPatternResult"));
    takeRow->addWidget(cmdTake);
    takeRow->addWidget(m_lblPatternResult, 1);
    takeLayout->addLayout(takeRow);
    layout->addWidget(take);
    layout->addStretch(1);

    m_optPatternRegion[0]->setChecked(true);
    return page;
}

QComboBox* FormOption::captureMethodBox()
{
    auto* box = new QComboBox;
    box->setObjectName(QStringLiteral("cboScreenCapture"));
    // The direct copy needs no Lag and leaves the player's clipboard alone.
    box->addItem(QStringLiteral("直接取り込む（推奨）"), static_cast<int>(CaptureMethod::Direct));
    box->addItem(QStringLiteral("PrintScreenキーとクリップボード"), static_cast<int>(CaptureMethod::PrintScreen));
    connect(box, &QComboBox::currentIndexChanged, this, [this, box](int index) {
        if (index >= 0) {
            m_settings.ScreenCapture = static_cast<CaptureMethod>(box->itemData(index).toInt());
            changed();
        }
    });
    m_refreshers.push_back([this, box] {
        const QSignalBlocker quiet(box);
        box->setCurrentIndex(box->findData(static_cast<int>(m_settings.ScreenCapture)));
    });
    return box;
}

QWidget* FormOption::buildTimingTab()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    int row = 0;
    const auto number = [&](const QString& text, QPushButton* button, QCheckBox* box = nullptr) {
        if (box)
            grid->addWidget(box, row, 0);
        grid->addWidget(caption(text), row, 1, Qt::AlignRight);
        grid->addWidget(button, row, 2);
        ++row;
    };
    grid->addWidget(flagBox(QStringLiteral("chkAutoStart"), QStringLiteral("起動後に自動で計測を始める"),
                            &Settings::AutoStart),
                    row++, 0, 1, 3);
    number(QStringLiteral("キャプチャインターバル(分)"),
           numberButton(QStringLiteral("cmdCaptureInterval"), QStringLiteral("キャプチャインターバル(分)を入力してください"), 1,
                        1440, [](Settings& s) -> std::int32_t& { return s.CaptureInterval; }));
    number(QStringLiteral("キャプチャ時の音（0 で鳴らさない、1～5）"),
           numberButton(QStringLiteral("cmdCaptureBeep"), QStringLiteral("キャプチャ時の音を入力してください（0 で鳴らさない）"),
                        0, 5, [](Settings& s) -> std::int32_t& { return s.CaptureBeep; }));
    number(QStringLiteral("キャプチャ調整時間(m秒)"),
           numberButton(QStringLiteral("cmdLag"), QStringLiteral("キャプチャ調整時間(m秒)を入力してください"), 0, 10000,
                        [](Settings& s) -> std::int32_t& { return s.Lag; }));
    grid->addWidget(caption(QStringLiteral("画面の取り込み方法")), row, 1, Qt::AlignRight);
    grid->addWidget(captureMethodBox(), row++, 2);
    number(QStringLiteral("起動時のゲーム起動確認遅延時間(秒)"),
           numberButton(QStringLiteral("cmdStartDelay"), QStringLiteral("起動確認遅延時間(秒)を入力してください"), 0, 3600,
                        [](Settings& s) -> std::int32_t& { return s.StartDelay; }));
    number(QStringLiteral("撮影チェックインターバル(m秒)"),
           numberButton(QStringLiteral("cmdDoHLInterval"), QStringLiteral("撮影チェックインターバル(m秒)を入力してください"),
                        100, 60000, [](Settings& s) -> std::int32_t& { return s.DoHLInterval; }),
           flagBox(QStringLiteral("chkDoHLCheckExec"), QStringLiteral("レベルアップ・死亡時に撮影する"),
                   &Settings::DoHLCheckExec));
    number(QStringLiteral("ジェスチャ入力待ち時間(m秒)"),
           numberButton(QStringLiteral("cmdGestureTime"), QStringLiteral("ジェスチャ入力待ち時間(m秒)を入力してください"), 100,
                        10000, [](Settings& s) -> std::int32_t& { return s.GestureTime; }),
           flagBox(QStringLiteral("chkGesture"), QStringLiteral("マウスボタンジェスチャを監視する"), &Settings::Gesture));
    number(QStringLiteral("お金を認識するときの待機時間(m秒)"),
           numberButton(QStringLiteral("cmdMoneyWait"), QStringLiteral("お金を認識するときの待機時間(m秒)を入力してください"), 0,
                        60000, [](Settings& s) -> std::int32_t& { return s.MoneyWait; }),
           flagBox(QStringLiteral("chkMoneyScan"), QStringLiteral("お金の時給も計測する"), &Settings::MoneyScan));
    number(QStringLiteral("グラフ時間軸データ数"),
           numberButton(QStringLiteral("cmdGraphTimeScale"), QStringLiteral("グラフ時間軸データ数を入力してください"), 2, 512,
                        [](Settings& s) -> std::int32_t& { return s.GraphTimeScale; }),
           flagBox(QStringLiteral("chkGraph"), QStringLiteral("グラフを表示する"), &Settings::Graph));
    number(QStringLiteral("グラフの平均化データ数"),
           numberButton(QStringLiteral("cmdGraphAveNum"), QStringLiteral("グラフの平均化データ数を入力してください"), 1, 100,
                        [](Settings& s) -> std::int32_t& { return s.GraphAveNum; }));
    grid->addWidget(caption(QStringLiteral("検索ウィンドウ名")), row, 0);
    grid->addWidget(textEdit(QStringLiteral("txtSearchWindowName"),
                             [](Settings& s) -> std::string& { return s.SearchWindowName; }),
                    row++, 1, 1, 2);
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(3, 1);
    return page;
}

QWidget* FormOption::buildFilesTab()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    int row = 0;

    grid->addWidget(caption(QStringLiteral("時給ファイル保存場所")), row, 0);
    grid->addWidget(textEdit(QStringLiteral("txtSaveFolder"), [](Settings& s) -> std::string& { return s.SaveFolder; }),
                    row, 1);
    auto* browseFolder = new QPushButton(QStringLiteral("参照…"));
    browseFolder->setObjectName(QStringLiteral("cmdSaveFolder"));
    browseFolder->setAutoDefault(false);
    connect(browseFolder, &QPushButton::clicked, this, &FormOption::chooseFolder);
    grid->addWidget(browseFolder, row++, 2);

    grid->addWidget(caption(QStringLiteral("時給ファイル名")), row, 0);
    grid->addWidget(textEdit(QStringLiteral("txtSaveFile"), [](Settings& s) -> std::string& { return s.SaveFile; }),
                    row++, 1);
    grid->addWidget(flagBox(QStringLiteral("chkSaveCsv"), QStringLiteral("時給ファイルをCSVで保存する"), &Settings::SaveCsv),
                    row++, 1);
    grid->addWidget(flagBox(QStringLiteral("chkSaveMonthly"), QStringLiteral("時給記録ファイルを一ヶ月追記する"),
                            &Settings::SaveMonthly),
                    row++, 1);

    grid->addWidget(caption(QStringLiteral("画像ファイルの保存形式")), row, 0);
    auto* format = new QComboBox;
    format->setObjectName(QStringLiteral("cboSaveFormat"));
    const std::pair<const char*, QString> formats[] = {
        {".bmp", QStringLiteral("BMP (.bmp)")},
        {".png", QStringLiteral("PNG (.png)")},
        {".jpg70", QStringLiteral("JPEG 品質70 (.jpg)")},
        {".jpg90", QStringLiteral("JPEG 品質90 (.jpg)")},
    };
    for (const auto& [value, text] : formats)
        format->addItem(text, QLatin1String(value));
    connect(format, &QComboBox::currentIndexChanged, this, [this, format](int index) {
        if (index >= 0) {
            m_settings.SaveFormat = coreText(format->itemData(index).toString());
            changed();
        }
    });
    m_refreshers.push_back([this, format] {
        const QSignalBlocker quiet(format);
        const QString value = qtText(m_settings.SaveFormat);
        int index = format->findData(value);
        if (index < 0) { // a hand-edited value stays selectable as it is
            format->addItem(value, value);
            index = format->count() - 1;
        }
        format->setCurrentIndex(index);
    });
    grid->addWidget(format, row++, 1, Qt::AlignLeft);

    for (int e = 0; e < 2; ++e) {
        const auto i = static_cast<std::size_t>(e);
        auto* enabled = new QCheckBox(QStringLiteral("アプリケーション%1を自動起動する").arg(e + 1));
        enabled->setObjectName(indexed("chkStartUp", e));
        connect(enabled, &QCheckBox::toggled, this, [this, i](bool on) {
            m_settings.StartUp[i].Enabled = on;
            changed();
        });
        m_refreshers.push_back([this, enabled, i] {
            const QSignalBlocker quiet(enabled);
            enabled->setChecked(m_settings.StartUp[i].Enabled);
        });
        grid->addWidget(enabled, row, 0);
        grid->addWidget(textEdit(indexed("txtStartUpPath", e),
                                 [i](Settings& s) -> std::string& { return s.StartUp[i].Path; }),
                        row, 1);
        auto* browse = new QPushButton(QStringLiteral("参照…"));
        browse->setObjectName(indexed("cmdStartUpPath", e));
        browse->setAutoDefault(false);
        connect(browse, &QPushButton::clicked, this, [this, e] { chooseStartUp(e); });
        grid->addWidget(browse, row++, 2);
    }
    grid->addWidget(caption(QStringLiteral("アプリケーション2を自動起動させる遅延時間(秒)")), row, 0);
    grid->addWidget(numberButton(QStringLiteral("cmdStartUpDelay"),
                                 QStringLiteral("アプリケーション2を自動起動させる遅延時間(秒)を入力してください"), 0, 3600,
                                 [](Settings& s) -> std::int32_t& { return s.StartUpDelay; }),
                    row++, 1, Qt::AlignLeft);
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(1, 1);
    return page;
}

// ---- showing ----

void FormOption::refresh()
{
    for (const NumberField& field : m_numbers)
        field.button->setText(formatNumber(field.value(m_settings)));
    for (const auto& refresher : m_refreshers)
        refresher();
    refreshPreviews();
}

void FormOption::refreshPreviews()
{
    std::array<QString, kRegionCount> results;
    if (m_capture) {
        try {
            ScreenRecognizer recognizer(m_settings);
            for (int r = 0; r < kRegionCount; ++r) {
                const auto i = static_cast<std::size_t>(r);
                try {
                    recognizer.fill(r, *m_capture);
                    recognizer.binarize(r);
                    m_columnStrings[i] = recognizer.ColumnString(r);
                    const std::string digits = recognizer.recognize(r).digits;
                    results[i] = digits.empty() ? QStringLiteral("認識できません") : qtText(digits);
                } catch (const RuntimeError&) {
                    m_columnStrings[i].clear();
                    results[i] = QStringLiteral("領域が画像の外です");
                }
            }
        } catch (const RuntimeError&) {
            m_columnStrings = {};
        }
    } else {
        m_columnStrings = {};
        results.fill(QStringLiteral("キャプチャ画像がありません"));
    }
    for (int r = 0; r < kRegionCount; ++r) {
        const auto i = static_cast<std::size_t>(r);
        const CaptureRegionRect& rect = m_settings.CaptureRegion[i];
        const QImage image = m_capture ? regionImage(*m_capture, rect) : QImage();
        if (image.isNull())
            m_picCapture[i]->setPixmap(QPixmap());
        else
            m_picCapture[i]->setPixmap(QPixmap::fromImage(
                image.scaled(image.width() * kPreviewScale, image.height() * kPreviewScale)));
        m_picBinary[i]->setRows(rect.SizeY);
        m_picBinary[i]->setColumns(columnsOf(m_columnStrings[i]));
        m_lblResult[i]->setText(QStringLiteral("認識結果： ") + results[i]);
    }
    const auto p = static_cast<std::size_t>(m_patternRegion);
    m_picColumns->setRows(glyphRows(m_settings, m_patternRegion));
    m_picColumns->setColumns(columnsOf(m_columnStrings[p]));
    m_picColumns->adjustSize(); // it sits in a scroll area, not in a layout
    m_picColumns->setSelectionWidth(m_settings.ReferenceSize[p].Width);
    m_lblPatternResult->setText(QStringLiteral("この領域の認識結果： ") + results[p]);
    refreshPatterns();
}

void FormOption::refreshPatterns()
{
    const auto r = static_cast<std::size_t>(m_patternRegion);
    const auto j = static_cast<std::size_t>(m_patternIndex);
    const int rows = glyphRows(m_settings, m_patternRegion);
    const int width = m_settings.ReferenceSize[r].Width;
    for (std::size_t k = 0; k < kPatternCount; ++k) {
        m_picPattern[k]->setRows(rows);
        m_picPattern[k]->setColumns(columnsOf(m_settings.PatternStrings[r][k]));
        m_picPattern[k]->setChecked(k == j);
    }
    const std::string& pattern = m_settings.PatternStrings[r][j];
    const std::optional<std::vector<std::uint16_t>> columns = decodePatternColumns(pattern);
    std::vector<std::uint16_t> shown = columns.value_or(std::vector<std::uint16_t>{});
    if (shown.empty())
        shown.assign(static_cast<std::size_t>(std::max(1, width)), 0); // a blank cell to draw in
    m_picEditor->setRows(rows);
    m_picEditor->setColumns(shown);
    m_lblEditor->setText(kRegionNames[r] + QStringLiteral(" のパターン「") + patternName(m_patternIndex) +
                         QStringLiteral("」"));
    m_txtPattern->setText(qtText(pattern));
    const int have = columns ? static_cast<int>(columns->size()) : 0;
    if (!columns)
        m_lblWidthNote->setText(QStringLiteral("変換文字列が不正です。描き直してください。"));
    else if (have != width)
        m_lblWidthNote->setText(QStringLiteral("幅 %1 列：基準幅 %2 列と違うため、このままでは認識に使われません。")
                                    .arg(have)
                                    .arg(width));
    else
        m_lblWidthNote->setText(QStringLiteral("幅 %1 列（基準幅どおり）").arg(have));
}

void FormOption::selectPattern(int region, int index)
{
    const bool regionChanged = region != m_patternRegion;
    m_patternRegion = region;
    m_patternIndex = index;
    if (regionChanged)
        m_picColumns->setSelection(-1, 0);
    refreshPreviews();
}

// ---- editing ----

void FormOption::askNumber(const NumberField& field)
{
    std::int32_t& value = field.value(m_settings);
    const double answer =
        m_config.prompter().askNumber(std::to_string(field.lower), std::to_string(field.upper), value, "1",
                                      coreText(field.prompt), "設定値入力");
    if (answer == Prompter::kCancelled)
        return;
    value = static_cast<std::int32_t>(std::clamp<double>(std::round(answer), field.lower, field.upper));
    field.button->setText(formatNumber(value));
    if (field.recognition) {
        m_config.sizeBuffers();
        refreshPreviews();
    }
    changed();
}

void FormOption::storePattern(const std::vector<std::uint16_t>& columns)
{
    m_settings.PatternStrings[static_cast<std::size_t>(m_patternRegion)][static_cast<std::size_t>(m_patternIndex)] =
        encodePatternColumns(columns);
    refreshPreviews();
    changed();
}

void FormOption::cmdTakeColumns_Click()
{
    const std::vector<std::uint16_t>& all = m_picColumns->columns();
    const int first = m_picColumns->selectionStart();
    const int count = m_picColumns->selectionLength();
    if (first < 0 || count <= 0 || first + count > static_cast<int>(all.size()))
        return;
    storePattern(std::vector<std::uint16_t>(all.begin() + first, all.begin() + first + count));
}

void FormOption::changed()
{
    emit settingsChanged();
}

void FormOption::runConfigFile(int mode, const char* command)
{
    if (DebugLog* log = m_config.log()) {
        try {
            log->WriteDebugLog(std::string("Click : ") + command);
        } catch (const RuntimeError&) {
        }
    }
    m_config.run(mode);
    refresh();
    changed();
}

void FormOption::chooseFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, QStringLiteral("時給ファイルの保存場所"),
                                                             qtText(m_settings.SaveFolder));
    if (folder.isEmpty())
        return;
    m_settings.SaveFolder = coreText(QDir::toNativeSeparators(folder));
    refresh();
    changed();
}

void FormOption::chooseStartUp(int entry)
{
    auto& path = m_settings.StartUp[static_cast<std::size_t>(entry)].Path;
    const QString file = QFileDialog::getOpenFileName(
        this, QStringLiteral("自動起動するアプリケーション"), qtText(path),
        QStringLiteral("すべてのファイル (*);;アプリケーション (*.exe *.bat *.cmd *.lnk)"));
    if (file.isEmpty())
        return;
    path = coreText(QDir::toNativeSeparators(file));
    refresh();
    changed();
}

// ---- pattern capture ----

void FormOption::cmdCapture_Click()
{
    DebugLog* log = m_config.log();
    const auto write = [log](const std::string& line) {
        if (!log)
            return;
        try {
            log->WriteDebugLog(line);
        } catch (const RuntimeError&) {
        }
    };
    write("Click : Pattern Capture ");
    QPointer<FormOption> alive(this);
    m_cmdCapture->setEnabled(false);
    m_lblCaptureStatus->setText(QStringLiteral("10秒後にキャプチャします。ゲームを前面に出してください…"));
    try {
        // The wait keeps events flowing, so the window may be gone when it returns.
        m_captureServices.waiter->WaitMs(10000);
        if (!alive)
            return;
        std::optional<CaptureBitmap> image = m_captureServices.screen->grab({});
        if (!image)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall, "no screen image");
        m_capture = std::move(image);
        refreshPreviews();
        const LocalDateTime now = m_captureServices.clock->now();
        char stamp[16];
        std::snprintf(stamp, sizeof stamp, "%02d%02d%02d%02d%02d", now.month % 100, now.day % 100, now.hour % 100,
                      now.minute % 100, now.second % 100);
        const std::filesystem::path file = m_config.programFolder() / (std::string("Capture_") + stamp + ".bmp");
        const Frame picture = toFrame(*m_capture);
        if (picture.width() == 0 || !writeBitmap24(file, picture))
            throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(file));
        m_config.sizeBuffers();
        m_lblCaptureStatus->setText(QStringLiteral("保存しました： ") + qtText(pathUtf8(file)));
        write("Pattern Capture and Save ･･･ End ");
    } catch (const RuntimeError& e) {
        if (!alive)
            return;
        m_lblCaptureStatus->setText(QStringLiteral("キャプチャできませんでした。"));
        write("Error Trap : cmdCapture_Click: :CODE" + std::to_string(static_cast<int>(e.number())) + "  " +
              std::string(errorDescription(e.number())));
    }
    m_cmdCapture->setEnabled(true);
}

} // namespace tvx::ui
