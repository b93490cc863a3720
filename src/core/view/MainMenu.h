#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tvx {

// The commands of the main window's menu, in menu order.
enum class MenuCommand : std::uint8_t {
    PatternSave,
    End,
    Option,
    Run,
    Stop,
    TimeLeft,
    RandomOne,
    RandomSome,
    PrtScr,
    Compact,
    History,
    Quick,
    HowToUse,
    ReadMe,
    OperatingInfo,
    Version,
};

// One entry of the menu bar: a drop-down menu with its items, or a command on the bar.
struct MenuItem {
    MenuCommand command;
    std::string_view name;    // control name, e.g. "menuRun"
    std::string_view caption; // Japanese, marked for the catalogue
    // The caption as shown, in the current language.
    std::string_view text() const;
};

struct MenuBarEntry {
    std::string_view name;
    std::string_view caption;
    std::span<const MenuItem> items; // empty: `command` sits on the bar itself
    MenuItem command{};
    std::string_view text() const;
};

// The main window's menu bar, left to right.
std::span<const MenuBarEntry> mainMenu();

// The item of a command (name and caption).
const MenuItem& menuItem(MenuCommand command);

} // namespace tvx
