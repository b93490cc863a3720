#pragma once

#include "recognition/RegionLearner.h"
#include "view/RegionPicker.h"
#include "view/ShownText.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class DebugLog;
class ScreenSource;

inline constexpr ShownText kCalibrationTitle{N_("画面から学習")};
// The calibration window's own controls, as both front ends caption them.
inline constexpr ShownText kCalibrationRegionCaption{N_("ドラッグで決める領域：")};
inline constexpr ShownText kCalibrationZoomCaption{N_("拡大：")};
inline constexpr ShownText kCalibrationCaptureCaption{N_("10秒後に画面を取り込む")};
inline constexpr ShownText kCalibrationNumbersCaption{N_("ゲームに表示されている数字を入力して「学習する」を押してください")};
inline constexpr ShownText kCalibrationSkipHint{N_("- で学習しない")};
inline constexpr ShownText kCalibrationGlyphsCaption{N_("パターン")};
inline constexpr ShownText kCalibrationLearnCaption{N_("学習する")};
inline constexpr ShownText kCalibrationApplyCaption{N_("反映する")};
inline constexpr ShownText kCalibrationCancelCaption{N_("キャンセル")};
// The glyph after the digits, as the player is told of it.
inline constexpr ShownText kEndMarkName{N_("終わりの記号")};

// What the calibration window shows of one region.
struct CalibrationRegionView {
    std::string typed;                          // the number the player typed ("" or "-": skipped)
    std::string message;                        // the outcome of the last learning step
    bool refused = false;
    std::int32_t width = 0;                     // the glyph width learnt (shapes: the digits' height)
    ReadingMode mode = ReadingMode::Exact;      // how the region will be read
    std::int32_t threshold = 0;                 // the brightness threshold it will be read with
    bool thresholdProposed = false;             // the learner chose it: the region's own did not separate the digits
    int rows = 9;                               // rows of the glyph views
    std::array<std::vector<std::uint16_t>, kPatternCount> glyphs; // learnt, else the present templates
    std::array<bool, kPatternCount> learnt{};
    std::string missing;                        // digits not learnt yet
    std::vector<std::string> readBack;          // one line per image: "137 → 137"
    std::string text;                           // the message and the read-back, as shown
};

// "Learn from the screen": the player types the three numbers the game shows, the meter
// takes the screen and each region's learner adds it. Dragging a region anew starts its
// learning over. The settings change only through applyTo, when the player confirms.
class Calibration {
public:
    // log may be null (no debug log).
    explicit Calibration(const Settings& settings, DebugLog* log = nullptr);

    RegionPicker& picker() { return m_picker; }
    const RegionPicker& picker() const { return m_picker; }

    // A region was dragged or nudged: what was learnt for it no longer fits.
    void regionMoved(int region);
    // Blanks around the number do not count.
    void setTyped(int region, std::string text);
    // What the number fields let through: digits, separators, blanks and the skipping "-".
    static bool acceptsNumberCharacter(char32_t typed);
    // Learns from the picker's screen with the typed numbers. False when nothing was tried
    // (no screen, or no number typed).
    bool learn();

    // The player's commands, logged: each returns the status line to show.
    std::string learnCommand(); // empty once something was tried
    std::string beginCapture(); // while the window waits 10 s
    std::string captureScreen(ScreenSource& screen);
    // Writes the result into the settings, the player having confirmed it.
    void applyCommand(Settings& settings) const;

    CalibrationRegionView view(int region) const;
    // The region on the present screen, read with what was learnt for it.
    RegionPreview preview(int region) const;
    // "読み取り： " and what the preview reads.
    static std::string readingText(const RegionPreview& preview);
    // True once some region learnt something or a region was moved.
    bool hasChanges() const;
    // Writes the regions and what was learnt into the settings.
    void applyTo(Settings& settings) const;

private:
    std::string outcomeText(int region, const LearnOutcome& outcome) const;
    void log(const std::string& line) const;

    DebugLog* m_log;
    RegionPicker m_picker;
    std::array<RegionLearner, kRegionCount> m_learners;
    std::array<std::string, kRegionCount> m_typed;
    std::array<std::string, kRegionCount> m_messages;
    std::array<bool, kRegionCount> m_refused{};
    bool m_moved = false;
};

} // namespace tvx
