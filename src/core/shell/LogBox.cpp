#include "shell/LogBox.h"

#include <algorithm>

namespace tvx {

void LogBox::write(std::string_view text, bool caretToEnd)
{
    std::size_t start = m_text.size();
    m_text += text;
    auto breaks = static_cast<std::size_t>(std::count(m_text.begin(), m_text.end(), '\n'));
    if (breaks > kLineLimit) {
        // Cut up to and including the surplus line break.
        std::size_t cut = 0;
        for (std::size_t surplus = breaks - kLineLimit; surplus > 0; --surplus)
            cut = m_text.find('\n', cut) + 1;
        m_text.erase(0, cut);
        start = start > cut ? start - cut : 0;
    }
    m_caret = caretToEnd ? m_text.size() : start;
    if (m_listener)
        m_listener(text);
}

void LogBox::clear()
{
    m_text.clear();
    m_caret = 0;
}

} // namespace tvx
