#include "PracticeSession.h"

#include "base/Utf8Path.h"

#include <chrono>
#include <fstream>

namespace tvx::practice {

std::optional<PracticeKey> practiceKey(int keyCode)
{
    switch (keyCode) {
    case 'D':
        return PracticeKey::Die;
    case 'C':
        return PracticeKey::Change;
    case 'U':
        return PracticeKey::LevelUp;
    case ' ':
        return PracticeKey::Pause;
    default:
        return std::nullopt;
    }
}

std::string hintText(bool paused)
{
    const std::string keys = "D:死亡（レベル-1・経験値0から）　C:キャラ変更　U:レベルアップ　Space:一時停止/再開";
    return paused ? "【一時停止中】　" + keys : keys;
}

std::vector<SceneLabel> sceneLabels(bool paused)
{
    constexpr Bgr kWhite{255, 255, 255};
    return {
        {{kHintBox.x + 8, kHintBox.y, kHintBox.width - 16, kHintBox.height}, hintText(paused), 13, kWhite, false},
        {kLevelLabel, "Lv.", 12, {90, 220, 255}, true},
        {kExpLabel, "EXP", 11, {160, 240, 255}, true},
        {kMoneyTitle, "所持金（メル）", 13, kWhite, false},
    };
}

std::string stateLine(std::int64_t epochSeconds, const CharacterState& state)
{
    return std::to_string(epochSeconds) + ' ' + std::to_string(state.level) + ' ' + std::to_string(state.exp) + ' ' +
           std::to_string(state.money);
}

PracticeSession::PracticeSession(PracticeOptions options)
    : m_options(std::move(options)), m_settings(defaultSettings("")), m_character(m_options.start)
{
}

PracticeSession::Redraw PracticeSession::tick()
{
    if (m_paused)
        return Redraw::Nothing;
    const CharacterState before = state();
    m_character.rise(m_options.expPerTick, m_options.moneyPerTick);
    return changed(before);
}

PracticeSession::Redraw PracticeSession::press(PracticeKey key)
{
    const CharacterState before = state();
    switch (key) {
    case PracticeKey::Die:
        m_character.die();
        break;
    case PracticeKey::Change:
        m_character.change();
        break;
    case PracticeKey::LevelUp:
        m_character.levelUp();
        break;
    case PracticeKey::Pause:
        m_paused = !m_paused;
        return Redraw::Labels;
    }
    return changed(before);
}

PracticeSession::Redraw PracticeSession::changed(const CharacterState& before) const
{
    return state() == before ? Redraw::Nothing : Redraw::Scene;
}

Frame PracticeSession::scene() const
{
    return paintScene(m_settings, state());
}

void PracticeSession::drawn()
{
    if (m_noted == state())
        return;
    m_noted = state();
    if (m_options.stateFile.empty())
        return;
    const auto now =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    // Opened and closed per line so a reader sees every line as soon as it is drawn.
    std::ofstream out(utf8Path(m_options.stateFile), std::ios::app);
    out << stateLine(now, state()) << '\n';
}

} // namespace tvx::practice
