#pragma once

#include "FormOption.h"

#include "view/Calibration.h"

#include <QDialog>

#include <array>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QScrollArea;

namespace tvx {
class DebugLog;
}

namespace tvx::ui {

class GlyphView;
class ScreenPicture;

// "Learn from the screen": the capture of the whole screen with the three regions to drag,
// each region's binarised columns and reading, the numbers the game shows to type in, and
// what was learnt. The settings given change only when the player confirms.
class FormCalibrate : public QDialog {
    Q_OBJECT

public:
    // log may be null (no debug log).
    FormCalibrate(Settings& settings, const CaptureBitmap* screen, PatternCaptureServices capture,
                  DebugLog* log = nullptr, QWidget* parent = nullptr);
    ~FormCalibrate() override;

private:
    struct RegionRow {
        QRadioButton* option = nullptr;
        QLineEdit* number = nullptr;
        GlyphView* columns = nullptr;
        QLabel* reading = nullptr;
        std::array<GlyphView*, kPatternCount> glyphs{};
        QLabel* message = nullptr;
    };

    QWidget* buildRegionRow(int region, RegionRow& row);
    void refreshRegion(int region);
    void refreshAll();
    void cmdLearn_Click();
    void cmdCapture_Click();
    void cmdApply_Click();

    Settings& m_settings;
    Calibration m_calibration;
    PatternCaptureServices m_captureServices;
    ScreenPicture* m_picture = nullptr;
    QScrollArea* m_scroll = nullptr;
    QComboBox* m_zoom = nullptr;
    QPushButton* m_cmdCapture = nullptr;
    QLabel* m_status = nullptr;
    std::array<RegionRow, kRegionCount> m_rows;
};

} // namespace tvx::ui
