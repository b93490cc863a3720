#include "view/MainMenu.h"

#include <array>

namespace tvx {
namespace {

constexpr std::array kFileItems{
    MenuItem{MenuCommand::PatternSave, "menuPatternSave", "パターン保存"},
    MenuItem{MenuCommand::End, "menuEnd", "終了"},
};
constexpr std::array kToolItems{
    MenuItem{MenuCommand::TimeLeft, "menuTimeLeft", "あと何時間？"},
    MenuItem{MenuCommand::RandomOne, "menuRandomOne", "らんだまーオンリーONE"},
    MenuItem{MenuCommand::RandomSome, "menuRandomSome", "らんだまーステキなサムシング"},
    MenuItem{MenuCommand::PrtScr, "menuPrtScr", "プリントスクリーン"},
    MenuItem{MenuCommand::Compact, "menuCompact", "小窓"},
    MenuItem{MenuCommand::History, "menuHistory", "セッション履歴..."},
};
constexpr std::array kHelpItems{
    MenuItem{MenuCommand::Quick, "menuQuick", "クイックリファレンス"},
    MenuItem{MenuCommand::HowToUse, "menuHowToUse", "使用方法"},
    MenuItem{MenuCommand::ReadMe, "menuReadMe", "よんで！"},
    MenuItem{MenuCommand::OperatingInfo, "menuOperatingInfo", "実行環境調査"},
    MenuItem{MenuCommand::Version, "menuVersion", "バージョン情報..."},
};
constexpr MenuItem kOption{MenuCommand::Option, "menuOption", "設定"};
constexpr MenuItem kRun{MenuCommand::Run, "menuRun", "開始"};
constexpr MenuItem kStop{MenuCommand::Stop, "menuStop", "停止"};

const std::array kMenuBar{
    MenuBarEntry{"menuFile", "ファイル", kFileItems, {}},
    MenuBarEntry{kOption.name, kOption.caption, {}, kOption},
    MenuBarEntry{kRun.name, kRun.caption, {}, kRun},
    MenuBarEntry{kStop.name, kStop.caption, {}, kStop},
    MenuBarEntry{"menuTools", "ツール", kToolItems, {}},
    MenuBarEntry{"menuHelp", "ヘルプ", kHelpItems, {}},
};

} // namespace

std::span<const MenuBarEntry> mainMenu()
{
    return kMenuBar;
}

const MenuItem& menuItem(MenuCommand command)
{
    for (const MenuBarEntry& entry : kMenuBar) {
        if (entry.items.empty() && entry.command.command == command)
            return entry.command;
        for (const MenuItem& item : entry.items)
            if (item.command == command)
                return item;
    }
    return kFileItems[1]; // every command is listed above
}

} // namespace tvx
