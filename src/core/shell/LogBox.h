#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace tvx {

// The text behind the main window's log box `txtLog`. New text goes at the end; once the
// box holds more than 512 line breaks the oldest lines are cut off the front.
class LogBox {
public:
    static constexpr std::size_t kLineLimit = 512;

    // Called after every change with the text just added (before trimming).
    using Listener = std::function<void(std::string_view added)>;

    // caretToEnd false puts the caret at the start of the new text instead.
    void write(std::string_view text, bool caretToEnd = true);
    void clear();

    const std::string& text() const { return m_text; }
    std::size_t caret() const { return m_caret; }
    void setListener(Listener listener) { m_listener = std::move(listener); }

private:
    std::string m_text;
    std::size_t m_caret = 0;
    Listener m_listener;
};

} // namespace tvx
