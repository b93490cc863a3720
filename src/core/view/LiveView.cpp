#include "view/LiveView.h"

#include "base/Language.h"
#include "measurement/ExpTable.h"
#include "measurement/RecordFormat.h"

#include <algorithm>
#include <cstdio>

namespace tvx {
namespace {

constexpr std::string_view kAbsent = "—";

std::string perHour(const std::optional<std::int64_t>& rate)
{
    return rate ? trFormat("%1k/h", {formatNumber(Currency::fromInt(*rate), 0, false)}) : std::string(kAbsent);
}

std::string decimals(double value, int places)
{
    char text[48];
    std::snprintf(text, sizeof text, "%.*f", places, value);
    std::string shown(text);
    if (shown.find_first_not_of("-0.") == std::string::npos && shown[0] == '-')
        shown.erase(0, 1);
    return shown;
}

std::string levelRate(const std::optional<double>& rate)
{
    return rate ? trFormat("%1％/h", {decimals(*rate, 2)}) : std::string(kAbsent);
}

std::string windowName(std::int32_t minutes)
{
    return minutes == 0 ? std::string(tr("全体")) : trFormat("%1分", {std::to_string(minutes)});
}

std::string nextLevelText(const LiveFigures& f)
{
    if (!f.nextLevelMinutes || !f.nextLevelAt)
        return std::string(kAbsent);
    char clock[16];
    std::snprintf(clock, sizeof clock, "%02d:%02d", f.nextLevelAt->hour, f.nextLevelAt->minute);
    return trFormat("%1分（%2）", {decimals(*f.nextLevelMinutes, 1), clock});
}

std::string levelText(const LiveFigures& f)
{
    if (!f.hasCharacter)
        return trFormat("Lv %1", {kAbsent});
    std::string text = trFormat("Lv %1", {std::to_string(f.level)});
    const std::int64_t span = (ExpTable(f.level + 1) - ExpTable(f.level)).wholePart();
    if (f.level < 200 && span > 0)
        text += "  " + trFormat("%1％", {decimals(100.0 * static_cast<double>(f.exp) / static_cast<double>(span), 2)});
    return text;
}

void setState(LiveView& view, const LiveFigures& f, const LiveContext& c)
{
    struct Shown {
        ReadingState state;
        const char* text;
        std::uint32_t colour;
    };
    Shown shown{ReadingState::Stopped, N_("停止中"), 0x808080};
    if (c.running && c.suspended)
        shown = {ReadingState::Suspended, N_("一時停止中"), 0x3070C0};
    else if (c.running && c.stallAlarm && f.stall == Stall::NoReading)
        shown = {ReadingState::Stalled, N_("停滞：読み取れません"), 0xD02020};
    else if (c.running && c.stallAlarm && f.stall == Stall::NoGain)
        shown = {ReadingState::Stalled, N_("停滞：経験値が増えません"), 0xD02020};
    else if (c.running && f.readings == 0)
        shown = {ReadingState::Waiting, N_("待機中"), 0x808080};
    else if (c.running && !f.latestValid)
        shown = {ReadingState::Failed, N_("認識失敗"), 0xD08000};
    else if (c.running)
        shown = {ReadingState::Reading, N_("読み取り中"), 0x20A040};
    view.state = shown.state;
    view.stateText = tr(shown.text);
    view.stateColour = shown.colour;
}

} // namespace

LiveView liveView(const LiveFigures& f, const LiveContext& c)
{
    LiveView view;
    setState(view, f, c);
    view.levelText = levelText(f);
    const auto& rates = f.rates;
    view.compact.push_back({tr("Exp 10分"), perHour(rates[Window10].exp)});
    view.compact.push_back({tr("Exp 60分"), perHour(rates[Window60].exp)});
    if (rates[Window60].money || f.money)
        view.compact.push_back({tr("メル 60分"), perHour(rates[Window60].money)});
    view.compact.push_back({tr("次のLvまで"), nextLevelText(f)});

    view.rates = trFormat("Exp時給  10分 %1  30分 %2  60分 %3  全体 %4",
                          {perHour(rates[Window10].exp), perHour(rates[Window30].exp), perHour(rates[Window60].exp),
                           perHour(rates[WindowSession].exp)});
    view.outlook = trFormat("Lv %1（60分）", {levelRate(rates[Window60].level)});
    if (rates[Window60].money || f.money)
        view.outlook += "  " + trFormat("メル %1", {perHour(rates[Window60].money)});
    view.outlook += "  " + trFormat("次のLvまで %1［%2］", {nextLevelText(f), windowName(c.nextLevelWindow)});
    return view;
}

PixelRect compactWindowRect(const Settings& settings, std::int32_t screenWidth, std::int32_t screenHeight,
                            std::size_t lines)
{
    const std::int32_t height = 2 * kCompactMargin + static_cast<std::int32_t>(lines + 1) * kCompactLineHeight;
    std::int32_t left = settings.CompactX;
    std::int32_t top = settings.CompactY;
    if (left == kUnplaced || top == kUnplaced) {
        left = screenWidth - kCompactWidth - 16;
        top = 16;
    }
    // A screen that shrank since leaves the window where it can still be grabbed.
    left = std::clamp(left, 0, std::max(0, screenWidth - kCompactWidth));
    top = std::clamp(top, 0, std::max(0, screenHeight - height));
    return {left, top, kCompactWidth, height};
}

} // namespace tvx
