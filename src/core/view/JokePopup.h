#pragma once

#include "base/Language.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace tvx {

// One line of the joke popup's script: the window's caption, its message and the caption
// of its one button, in Japanese.
struct JokeLine {
    std::string_view caption;
    std::string_view message;
    std::string_view button;

    // The line as the window shows it, in the current language.
    JokeLine shown() const;
};

// The joke popup behind the version window's "おまけ" button. It does not want to be
// closed: every attempt (the close box, Escape, Alt+F4 and its own button alike) only
// brings the next line of its script, until an attempt on the last line lets it go.
// The windows draw current() and forward attempts; they close when attemptClose() says so.
class JokePopup {
public:
    static constexpr std::string_view kOpenCaption = N_("おまけ"); // shown through tr()
    // The message's width in pixels at 96 dpi; each window measures the script's tallest
    // message at this width once, so the popup keeps one size from the first line to the last.
    static constexpr int kMessageWidth = 300;

    static std::span<const JokeLine> script();

    // Back to the first line: every opening plays the whole script.
    void open();
    bool isOpen() const { return m_open; }
    std::size_t line() const { return m_line; }
    const JokeLine& current() const;

    // True when the window may close now: on the script's last line, or when not open.
    bool attemptClose();

private:
    std::size_t m_line = 0;
    bool m_open = false;
};

} // namespace tvx
