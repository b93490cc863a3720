#include "FormCalibrate.h"

#include "GlyphView.h"
#include "QtText.h"
#include "ScreenPicture.h"

#include "ports/Waiter.h"
#include "shell/DebugLog.h"
#include "view/OptionFields.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QValidator>
#include <QScrollArea>
#include <QVBoxLayout>

namespace tvx::ui {
namespace {

// Lets through what the calibration takes for a number.
class NumberValidator : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString& input, int&) const override
    {
        for (const char32_t c : input.toUcs4())
            if (!Calibration::acceptsNumberCharacter(c))
                return Invalid;
        return Acceptable;
    }
};

QString indexed(const char* name, int index)
{
    return QLatin1String(name) + QString::number(index);
}

} // namespace

FormCalibrate::FormCalibrate(Settings& settings, const CaptureBitmap* screen, PatternCaptureServices capture,
                             DebugLog* log, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_calibration(settings, log), m_captureServices(capture)
{
    setObjectName(QStringLiteral("FormCalibrate"));
    setWindowTitle(qtText(kCalibrationTitle));
    if (screen)
        m_calibration.picker().setScreen(*screen);

    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(qtText(kCalibrationRegionCaption)));
    for (int r = 0; r < kRegionCount; ++r) {
        auto* option = new QRadioButton(qtText(regionCaption(r)));
        option->setObjectName(indexed("optRegion", r));
        connect(option, &QRadioButton::toggled, this, [this, r](bool on) {
            if (on) {
                m_calibration.picker().selectRegion(r);
                m_picture->update();
            }
        });
        m_rows[static_cast<std::size_t>(r)].option = option;
        top->addWidget(option);
    }
    top->addSpacing(16);
    top->addWidget(new QLabel(qtText(kCalibrationZoomCaption)));
    m_zoom = new QComboBox;
    m_zoom->setObjectName(QStringLiteral("cboZoom"));
    for (int zoom = 1; zoom <= RegionPicker::kMaxZoom; zoom *= 2)
        m_zoom->addItem(qtText(RegionPicker::zoomCaption(zoom)), zoom);
    top->addWidget(m_zoom);
    top->addStretch(1);
    m_cmdCapture = new QPushButton(qtText(kCalibrationCaptureCaption));
    m_cmdCapture->setObjectName(QStringLiteral("cmdCapture"));
    m_cmdCapture->setAutoDefault(false);
    m_cmdCapture->setEnabled(capture.screen && capture.waiter);
    connect(m_cmdCapture, &QPushButton::clicked, this, &FormCalibrate::cmdCapture_Click);
    top->addWidget(m_cmdCapture);

    m_picture = new ScreenPicture(m_calibration.picker());
    m_picture->setObjectName(QStringLiteral("picScreen"));
    connect(m_picture, &ScreenPicture::regionMoved, this, [this](int region) {
        m_calibration.regionMoved(region);
        refreshRegion(region);
    });
    m_scroll = new QScrollArea;
    m_scroll->setWidget(m_picture);
    m_scroll->setMinimumSize(640, 280);
    connect(m_zoom, &QComboBox::currentIndexChanged, this, [this](int index) {
        // Keep the selected region in view at the new zoom.
        m_calibration.picker().setZoom(m_zoom->itemData(index).toInt());
        m_picture->refresh();
        const ScreenPoint centre = m_calibration.picker().selectedCentre();
        m_scroll->ensureVisible(centre.x, centre.y, m_scroll->width() / 2, m_scroll->height() / 2);
    });

    auto* regions = new QGroupBox(qtText(kCalibrationNumbersCaption));
    auto* regionsLayout = new QVBoxLayout(regions);
    for (int r = 0; r < kRegionCount; ++r)
        regionsLayout->addWidget(buildRegionRow(r, m_rows[static_cast<std::size_t>(r)]));

    auto* bottom = new QHBoxLayout;
    auto* learn = new QPushButton(qtText(kCalibrationLearnCaption));
    learn->setObjectName(QStringLiteral("cmdLearn"));
    learn->setAutoDefault(false);
    connect(learn, &QPushButton::clicked, this, &FormCalibrate::cmdLearn_Click);
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("lblStatus"));
    auto* apply = new QPushButton(qtText(kCalibrationApplyCaption));
    apply->setObjectName(QStringLiteral("cmdApply"));
    apply->setAutoDefault(false);
    connect(apply, &QPushButton::clicked, this, &FormCalibrate::cmdApply_Click);
    auto* cancel = new QPushButton(qtText(kCalibrationCancelCaption));
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    bottom->addWidget(learn);
    bottom->addWidget(m_status, 1);
    bottom->addWidget(apply);
    bottom->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_scroll, 1);
    layout->addWidget(regions);
    layout->addLayout(bottom);
    m_rows[0].option->setChecked(true);
    refreshAll();
}

FormCalibrate::~FormCalibrate() = default;

QWidget* FormCalibrate::buildRegionRow(int region, RegionRow& row)
{
    auto* box = new QWidget;
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 2, 0, 2);
    auto* name = new QLabel(qtText(regionCaption(region)));
    name->setStyleSheet(
        QStringLiteral("color: %1; font-weight: bold;").arg(QColor::fromRgb(regionTextColour(region)).name()));
    row.number = new QLineEdit;
    row.number->setObjectName(indexed("txtNumber", region));
    row.number->setPlaceholderText(qtText(kCalibrationSkipHint));
    row.number->setFixedWidth(120);
    row.number->setValidator(new NumberValidator(row.number));
    connect(row.number, &QLineEdit::textChanged, this,
            [this, region](const QString& text) { m_calibration.setTyped(region, coreText(text)); });
    row.columns = new GlyphView(GlyphView::Mode::Show);
    row.columns->setObjectName(indexed("picColumns", region));
    row.columns->setPixelSize(2);
    row.reading = new QLabel;
    row.reading->setObjectName(indexed("lblReading", region));
    auto* glyphs = new QHBoxLayout;
    glyphs->setSpacing(2);
    for (int k = 0; k < kPatternCount; ++k) {
        auto* glyph = new GlyphView(GlyphView::Mode::Show);
        glyph->setObjectName(indexed("picGlyph", region * 100 + k));
        glyph->setPixelSize(2);
        glyph->setToolTip(k == kDelimiterIndex ? qtText(kEndMarkName) : QString::number(k));
        row.glyphs[static_cast<std::size_t>(k)] = glyph;
        glyphs->addWidget(glyph, 0, Qt::AlignBottom);
    }
    glyphs->addStretch(1);
    row.message = new QLabel;
    row.message->setObjectName(indexed("lblMessage", region));
    row.message->setWordWrap(true);

    grid->addWidget(name, 0, 0);
    grid->addWidget(row.number, 0, 1);
    grid->addWidget(row.columns, 0, 2, Qt::AlignLeft | Qt::AlignVCenter);
    grid->addWidget(row.reading, 0, 3);
    grid->addWidget(new QLabel(qtText(kCalibrationGlyphsCaption)), 1, 1, Qt::AlignRight);
    grid->addLayout(glyphs, 1, 2);
    grid->addWidget(row.message, 1, 3);
    grid->setColumnStretch(3, 1);
    return box;
}

void FormCalibrate::refreshAll()
{
    for (int r = 0; r < kRegionCount; ++r)
        refreshRegion(r);
}

void FormCalibrate::refreshRegion(int region)
{
    RegionRow& row = m_rows[static_cast<std::size_t>(region)];
    const RegionPreview preview = m_calibration.preview(region);
    row.columns->setRows(std::max(1, preview.rows));
    row.columns->setColumns(preview.columns);
    row.reading->setText(qtText(Calibration::readingText(preview)));

    const CalibrationRegionView view = m_calibration.view(region);
    for (std::size_t k = 0; k < kPatternCount; ++k) {
        row.glyphs[k]->setRows(std::max(1, view.rows));
        row.glyphs[k]->setColumns(view.glyphs[k]);
        row.glyphs[k]->setChecked(view.learnt[k]); // a frame marks what was learnt
    }
    row.message->setText(qtText(view.text));
    row.message->setStyleSheet(view.refused ? QStringLiteral("color: #c00000;") : QString());
}

void FormCalibrate::cmdLearn_Click()
{
    m_status->setText(qtText(m_calibration.learnCommand()));
    refreshAll();
}

void FormCalibrate::cmdCapture_Click()
{
    QPointer<FormCalibrate> alive(this);
    m_cmdCapture->setEnabled(false);
    m_status->setText(qtText(m_calibration.beginCapture()));
    // The wait keeps events flowing, so the window may be gone when it returns.
    m_captureServices.waiter->WaitMs(10000);
    if (!alive)
        return;
    m_status->setText(qtText(m_calibration.captureScreen(*m_captureServices.screen)));
    m_picture->refresh();
    refreshAll();
    m_cmdCapture->setEnabled(true);
}

void FormCalibrate::cmdApply_Click()
{
    m_calibration.applyCommand(m_settings);
    accept();
}

} // namespace tvx::ui
