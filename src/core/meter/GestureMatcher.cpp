#include "meter/GestureMatcher.h"
#include "base/Language.h"

#include <array>
#include <utility>

namespace tvx {

namespace {

constexpr std::array<std::pair<std::string_view, Gesture>, 7> kPatterns{{
    {"LdLuRdRuLdLuLdLu", Gesture::Suspend},
    {"LdLuRdRuLdLuRdRu", Gesture::Resume},
    {"LdLuRdRuRdRuLdLu", Gesture::MoneyScanOn},
    {"LdLuRdRuRdRuRdRu", Gesture::MoneyScanOff},
    {"RdRuLdLuLdLuLdLu", Gesture::WatchOn},
    {"RdRuLdLuLdLuRdRu", Gesture::WatchOff},
    {"RdRuRdRuRdRuRdRu", Gesture::CycleReset},
}};

constexpr std::array<std::string_view, 4> kBothPressedThenReleased{"LdRdLuRu", "RdLdLuRu", "LdRdRuLu", "RdLdRuLu"};
constexpr std::array<std::string_view, 4> kBothReleasedThenPressed{"LuRuLdRd", "RuLuLdRd", "LuRuRdLd", "RuLuRdLd"};

template <std::size_t N>
bool containsAny(const std::string& text, const std::array<std::string_view, N>& parts)
{
    for (const std::string_view part : parts)
        if (text.find(part) != std::string::npos)
            return true;
    return false;
}

Gesture match(const std::string& text)
{
    for (const auto& [pattern, gesture] : kPatterns)
        if (text.find(pattern) != std::string::npos)
            return gesture;
    if (containsAny(text, kBothPressedThenReleased) && containsAny(text, kBothReleasedThenPressed))
        return Gesture::PrintScreen;
    return Gesture::None;
}

} // namespace

std::string gestureLetters(const std::vector<MouseButtonEvent>& events)
{
    std::string letters;
    for (const MouseButtonEvent& event : events) {
        letters += event.button == MouseButton::Left ? 'L' : 'R';
        letters += event.pressed ? 'd' : 'u';
    }
    return letters;
}

Gesture GestureMatcher::feed(const std::vector<MouseButtonEvent>& batch, std::uint32_t nowMs, std::int32_t gestureTimeMs)
{
    const std::string letters = gestureLetters(batch);
    if (letters.empty())
        return Gesture::None;
    // The tick is unsigned and wraps after 49 days; the difference stays right across it.
    const bool continues = m_seen && gestureTimeMs > 0 && nowMs - m_lastMs < static_cast<std::uint32_t>(gestureTimeMs);
    m_text = continues ? m_text + letters : letters;
    if (m_text.size() > kTextLength)
        m_text.erase(0, m_text.size() - kTextLength);
    m_lastMs = nowMs;
    m_seen = true;
    if (m_text.size() < kShortestGesture)
        return Gesture::None;
    const Gesture gesture = match(m_text);
    if (gesture != Gesture::None)
        m_text.clear();
    return gesture;
}

std::string_view gestureMessage(Gesture gesture)
{
    switch (gesture) {
    case Gesture::Suspend: return tr("マウスジェスチャ：時給測定一時停止");
    case Gesture::Resume: return tr("マウスジェスチャ：時給測定一時停止 解除");
    case Gesture::MoneyScanOn: return tr("マウスジェスチャ：メル時給測定開始");
    case Gesture::MoneyScanOff: return tr("マウスジェスチャ：メル時給測定停止");
    case Gesture::WatchOn: return tr("マウスジェスチャ：自動撮影 監視開始");
    case Gesture::WatchOff: return tr("マウスジェスチャ：自動撮影 監視終了");
    case Gesture::CycleReset: return tr("マウスジェスチャ：時給サイクルタイマリセット");
    case Gesture::PrintScreen: return tr("マウスジェスチャ：プリントスクリーン");
    case Gesture::None: break;
    }
    return {};
}

} // namespace tvx
