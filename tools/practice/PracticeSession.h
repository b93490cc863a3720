#pragma once

#include "PracticeCharacter.h"
#include "PracticeOptions.h"
#include "PracticeScene.h"

#include "config/Settings.h"
#include "recognition/Frame.h"
#include "recognition/GlyphPainter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tvx::practice {

enum class PracticeKey { Die, Change, LevelUp, Pause };

// The practice key for a key code. Qt and Windows give letters as their upper-case ASCII
// code and the space bar as 0x20, so one table serves both windows.
std::optional<PracticeKey> practiceKey(int keyCode);

// A text the window writes over the scene in its own bold font, clipped to the box.
struct SceneLabel {
    SceneRect box;
    std::string text; // UTF-8
    std::int32_t pixelSize = 12;
    Bgr colour;
    bool alignRight = false;
};

// The hint line (which names every key) and the captions beside the numbers.
std::string hintText(bool paused);
std::vector<SceneLabel> sceneLabels(bool paused);

// "epochSeconds level exp money", the line the state file gets for a drawn state.
std::string stateLine(std::int64_t epochSeconds, const CharacterState& state);

// What the practice window shows and when: the character, the pause, the state lines. The
// window draws `scene()` and `sceneLabels(paused())`, and calls `drawn()` once the picture
// on the screen is the current state.
class PracticeSession {
public:
    explicit PracticeSession(PracticeOptions options);

    const PracticeOptions& options() const { return m_options; }
    const Settings& settings() const { return m_settings; }
    const CharacterState& state() const { return m_character.state(); }
    bool paused() const { return m_paused; }

    // What a tick or a key leaves to redraw.
    enum class Redraw { Nothing, Labels, Scene };
    Redraw tick();
    Redraw press(PracticeKey key);

    // The picture of the current state, labels not included.
    Frame scene() const;

    // Appends the state line when this state has not been noted yet.
    void drawn();

private:
    Redraw changed(const CharacterState& before) const;

    PracticeOptions m_options;
    Settings m_settings;
    PracticeCharacter m_character;
    std::optional<CharacterState> m_noted;
    bool m_paused = false;
};

} // namespace tvx::practice
