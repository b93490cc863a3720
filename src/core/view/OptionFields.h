#pragma once

#include "config/Settings.h"
#include "view/ShownText.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

// The options window's tabs, in their order.
enum class OptionTab : int { Regions, Patterns, Timing, Files };
inline constexpr int kOptionTabCount = 4;
std::string_view optionTabCaption(OptionTab tab);

inline constexpr ShownText kOptionsTitle{N_("設定")};
inline constexpr ShownText kNumberTitle{N_("設定値入力")};

// The options window's own controls, as both front ends caption them.
inline constexpr ShownText kOptionsSaveCaption{N_("保存")};
inline constexpr ShownText kOptionsLoadCaption{N_("読込み")};
inline constexpr ShownText kOptionsInitCaption{N_("初期化")};
inline constexpr ShownText kOptionsCloseCaption{N_("閉じる")};
inline constexpr ShownText kBrowseCaption{N_("参照…")};
inline constexpr ShownText kPictureCaption{N_("画像")};
inline constexpr ShownText kBinaryCaption{N_("２値化")};
inline constexpr ShownText kPatternCaptureCaption{N_("10秒後にキャプチャ")};
inline constexpr ShownText kPatternCaptureHint{N_("10秒のうちにゲームを前面に出してください。")};
inline constexpr ShownText kPatternCaptureTip{N_("10秒のうちにゲームを前面に出してください。画面を保存し、各領域を表示します。")};
inline constexpr ShownText kCalibrateCaption{N_("画面から学習…")};
inline constexpr ShownText kPatternRegionCaption{N_("領域：")};
inline constexpr ShownText kPatternTilesCaption{N_("パターン（クリックで編集）")};
inline constexpr ShownText kPatternEditCaption{N_("編集")};
inline constexpr ShownText kPatternEditTip{N_("クリックで点を描く・消す。ドラッグで続けて描けます。")};
inline constexpr ShownText kAddColumnCaption{N_("右に列を追加")};
inline constexpr ShownText kRemoveColumnCaption{N_("右端の列を削除")};
inline constexpr ShownText kClearPatternCaption{N_("すべて消す")};
inline constexpr ShownText kPatternTextCaption{N_("変換文字列（上級者向け）：")};
inline constexpr ShownText kTakeColumnsGroupCaption{N_("キャプチャ画像から取り込む")};
inline constexpr ShownText kTakeColumnsHelp{
    N_("最後のキャプチャをこの領域の境界値で２値化した画像です。数字の左端をクリックすると基準幅の列が"
       "選ばれます（ドラッグで範囲を変えられます）。")};
inline constexpr ShownText kTakeColumnsCaption{N_("選んだ列をこのパターンにする")};
// The browse dialogs: their titles, and the names of the file kinds offered (the patterns
// after them are each toolkit's).
inline constexpr ShownText kSaveFolderDialogTitle{N_("時給ファイルの保存場所")};
inline constexpr ShownText kStartUpDialogTitle{N_("自動起動するアプリケーション")};
inline constexpr ShownText kAllFilesName{N_("すべてのファイル")};
inline constexpr ShownText kApplicationsName{N_("アプリケーション")};

// "Lv (1)", "Exp (2)", "マネー (3)": a region as the player numbers it.
std::string_view regionCaption(int region);

// A number of the settings, edited through the bounded number input. The capture-region
// fields exist once per region; their name ends in the region index ("cmdSizeY1").
struct NumberField {
    std::string name;
    ShownText caption;
    ShownText prompt;
    std::int32_t lower = 0;
    std::int32_t upper = 0;
    OptionTab tab = OptionTab::Timing;
    int region = -1; // 0..2 for a region's field
    int row = 0;     // the line of its tab (within its region's group on the regions tab)
    bool recognition = false; // the previews follow and the capture buffers are resized
    std::int32_t& (*value)(Settings&, int region) = nullptr;
};

// A switch of the settings; drawn as a check box at the start of its row. Debug mode is
// the one switch without a value: it belongs to the running meter (OptionsEditor's
// DebugSwitch), not to the settings file.
struct FlagField {
    std::string name;
    ShownText caption;
    OptionTab tab = OptionTab::Timing;
    int row = 0;
    bool& (*value)(Settings&) = nullptr;
};

// A text of the settings; a folder or a file may be chosen with a browse button.
struct TextField {
    enum class Browse { None, Folder, File };
    std::string name;
    ShownText caption;
    OptionTab tab = OptionTab::Files;
    int row = 0;
    Browse browse = Browse::None;
    std::string browseName; // the browse button's name
    std::string& (*value)(Settings&) = nullptr;
};

// One of a few values, drawn as a drop-down list.
struct ChoiceField {
    struct Choice {
        std::string value;
        std::string caption;
    };
    std::string name;
    ShownText caption;
    OptionTab tab = OptionTab::Timing;
    int row = 0;
    std::vector<Choice> choices; // captions marked for the catalogue, unless ownNames
    std::string (*get)(const Settings&) = nullptr;
    void (*set)(Settings&, const std::string&) = nullptr;
    // The captions are shown as they are: the languages, each by its own name.
    bool ownNames = false;
};

const std::vector<NumberField>& numberFields();
const std::vector<FlagField>& flagFields();
const std::vector<TextField>& textFields();
const std::vector<ChoiceField>& choiceFields();

// One line of the timing and files tabs: [flag] [caption] [number, text or choice] [browse],
// or a heading over the lines that belong together.
struct OptionRow {
    std::string_view heading;
    const FlagField* flag = nullptr;
    const NumberField* number = nullptr;
    const TextField* text = nullptr;
    const ChoiceField* choice = nullptr;
    std::string_view caption() const;
};
std::vector<OptionRow> optionRows(OptionTab tab);

// The fields of one region's group on the regions tab, in their order.
std::vector<const NumberField*> regionFields(int region);

// The choices as the list shows them, in the current language: a hand-edited value not
// among them is added.
std::vector<ChoiceField::Choice> choicesFor(const ChoiceField& field, const Settings& settings);
std::size_t chosenIndex(const ChoiceField& field, const Settings& settings);

} // namespace tvx
