#pragma once

#include "config/Settings.h"

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

inline constexpr std::string_view kOptionsTitle = "設定";
inline constexpr std::string_view kNumberTitle = "設定値入力";

// "Lv (1)", "Exp (2)", "マネー (3)": a region as the player numbers it.
std::string_view regionCaption(int region);

// A number of the settings, edited through the bounded number input. The capture-region
// fields exist once per region; their name ends in the region index ("cmdSizeY1").
struct NumberField {
    std::string name;
    std::string caption;
    std::string prompt;
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
    std::string caption;
    OptionTab tab = OptionTab::Timing;
    int row = 0;
    bool& (*value)(Settings&) = nullptr;
};

// A text of the settings; a folder or a file may be chosen with a browse button.
struct TextField {
    enum class Browse { None, Folder, File };
    std::string name;
    std::string caption;
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
    std::string caption;
    OptionTab tab = OptionTab::Timing;
    int row = 0;
    std::vector<Choice> choices;
    std::string (*get)(const Settings&) = nullptr;
    void (*set)(Settings&, const std::string&) = nullptr;
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

// The choices as the list shows them: a hand-edited value not among them is added.
std::vector<ChoiceField::Choice> choicesFor(const ChoiceField& field, const Settings& settings);
std::size_t chosenIndex(const ChoiceField& field, const Settings& settings);

} // namespace tvx
