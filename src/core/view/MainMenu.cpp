#include "view/MainMenu.h"

#include "base/Language.h"

#include <array>

namespace tvx {
namespace {

constexpr std::array kFileItems{
    MenuItem{MenuCommand::PatternSave, "menuPatternSave", N_("パターン保存")},
    MenuItem{MenuCommand::End, "menuEnd", NC_("menu", "終了")},
};
constexpr std::array kToolItems{
    MenuItem{MenuCommand::TimeLeft, "menuTimeLeft", N_("あと何時間？")},
    MenuItem{MenuCommand::RandomOne, "menuRandomOne", N_("らんだまーオンリーONE")},
    MenuItem{MenuCommand::RandomSome, "menuRandomSome", N_("らんだまーステキなサムシング")},
    MenuItem{MenuCommand::PrtScr, "menuPrtScr", N_("プリントスクリーン")},
    MenuItem{MenuCommand::Compact, "menuCompact", N_("小窓")},
    MenuItem{MenuCommand::History, "menuHistory", N_("セッション履歴...")},
};
constexpr std::array kHelpItems{
    MenuItem{MenuCommand::Quick, "menuQuick", N_("クイックリファレンス")},
    MenuItem{MenuCommand::HowToUse, "menuHowToUse", N_("使用方法")},
    MenuItem{MenuCommand::ReadMe, "menuReadMe", N_("よんで！")},
    MenuItem{MenuCommand::OperatingInfo, "menuOperatingInfo", N_("実行環境調査")},
    MenuItem{MenuCommand::Version, "menuVersion", N_("バージョン情報...")},
};
constexpr MenuItem kOption{MenuCommand::Option, "menuOption", N_("設定")};
constexpr MenuItem kRun{MenuCommand::Run, "menuRun", N_("開始")};
constexpr MenuItem kStop{MenuCommand::Stop, "menuStop", N_("停止")};

const std::array kMenuBar{
    MenuBarEntry{"menuFile", N_("ファイル"), kFileItems, {}},
    MenuBarEntry{kOption.name, kOption.caption, {}, kOption},
    MenuBarEntry{kRun.name, kRun.caption, {}, kRun},
    MenuBarEntry{kStop.name, kStop.caption, {}, kStop},
    MenuBarEntry{"menuTools", N_("ツール"), kToolItems, {}},
    MenuBarEntry{"menuHelp", N_("ヘルプ"), kHelpItems, {}},
};

} // namespace

std::string_view MenuItem::text() const
{
    return tr(caption);
}

std::string_view MenuBarEntry::text() const
{
    return tr(caption);
}

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
