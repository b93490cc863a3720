#include "view/GlyphCanvas.h"

#include <algorithm>
#include <cstdlib>

namespace tvx {

void GlyphCanvas::setColumns(std::vector<std::uint16_t> columns)
{
    m_columns = std::move(columns);
    if (m_selectionStart >= static_cast<int>(m_columns.size()))
        setSelection(-1, 0);
}

void GlyphCanvas::setRows(int rows)
{
    m_rows = std::clamp(rows, 1, 16);
}

void GlyphCanvas::setPixelSize(int pixels)
{
    m_pixel = std::max(1, pixels);
}

void GlyphCanvas::setSelectionWidth(int columns)
{
    m_selectionWidth = std::max(1, columns);
}

bool GlyphCanvas::setSelection(int first, int count)
{
    const int size = static_cast<int>(m_columns.size());
    if (first < 0 || count <= 0 || first >= size) {
        first = -1;
        count = 0;
    } else {
        count = std::min(count, size - first);
    }
    if (first == m_selectionStart && count == m_selectionLength)
        return false;
    m_selectionStart = first;
    m_selectionLength = count;
    return true;
}

bool GlyphCanvas::ink(int column, int row) const
{
    return column >= 0 && column < static_cast<int>(m_columns.size()) && row >= 0 && row < 16 &&
           (m_columns[static_cast<std::size_t>(column)] & (1u << row)) != 0;
}

int GlyphCanvas::width() const
{
    return std::max<int>(1, static_cast<int>(m_columns.size())) * m_pixel + 2 * kMargin;
}

int GlyphCanvas::height() const
{
    return m_rows * m_pixel + 2 * kMargin;
}

bool GlyphCanvas::pixelAt(int x, int y, int& column, int& row) const
{
    if (x < kMargin || y < kMargin)
        return false;
    column = (x - kMargin) / m_pixel;
    row = (y - kMargin) / m_pixel;
    return column < static_cast<int>(m_columns.size()) && row < m_rows;
}

int GlyphCanvas::columnAt(int x) const
{
    const int last = static_cast<int>(m_columns.size()) - 1;
    return std::clamp((x - kMargin) / m_pixel, 0, std::max(0, last));
}

GlyphCanvas::Change GlyphCanvas::paint(int column, int row)
{
    auto& value = m_columns[static_cast<std::size_t>(column)];
    const auto bit = static_cast<std::uint16_t>(1u << row);
    const auto next = static_cast<std::uint16_t>(m_ink ? value | bit : value & ~bit);
    if (next == value)
        return Change::None;
    value = next;
    return Change::Columns;
}

GlyphCanvas::Change GlyphCanvas::press(int x, int y)
{
    int column = 0;
    int row = 0;
    switch (m_mode) {
    case Mode::Edit:
        if (!pixelAt(x, y, column, row))
            return Change::None;
        m_ink = !ink(column, row);
        m_dragging = true;
        return paint(column, row);
    case Mode::Select:
        if (m_columns.empty())
            return Change::None;
        m_anchor = columnAt(x);
        m_dragging = true;
        return setSelection(m_anchor, m_selectionWidth) ? Change::Selection : Change::None;
    case Mode::Button:
        return Change::Clicked;
    case Mode::Show:
        break;
    }
    return Change::None;
}

GlyphCanvas::Change GlyphCanvas::move(int x, int y)
{
    if (!m_dragging)
        return Change::None;
    int column = 0;
    int row = 0;
    if (m_mode == Mode::Edit && pixelAt(x, y, column, row))
        return paint(column, row);
    if (m_mode == Mode::Select) {
        const int here = columnAt(x);
        if (here != m_anchor && setSelection(std::min(here, m_anchor), std::abs(here - m_anchor) + 1))
            return Change::Selection;
    }
    return Change::None;
}

} // namespace tvx
