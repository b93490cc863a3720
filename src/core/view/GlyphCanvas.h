#pragma once

#include <cstdint>
#include <vector>

namespace tvx {

// Pixel columns drawn as enlarged pixels, bit y of a column being row y: a template or the
// binarised columns of a region. Both front ends draw it and forward the mouse to it: in
// Edit mode a press toggles a pixel and a drag paints the same ink on; in Select mode a
// press selects one glyph width from the column and a drag any range; a Button is clicked.
class GlyphCanvas {
public:
    enum class Mode { Show, Edit, Select, Button };
    // What a mouse event changed, for the front end to redraw and report.
    enum class Change { None, Columns, Selection, Clicked };
    static constexpr int kMargin = 2;

    explicit GlyphCanvas(Mode mode = Mode::Show) : m_mode(mode) {}

    Mode mode() const { return m_mode; }
    void setColumns(std::vector<std::uint16_t> columns);
    const std::vector<std::uint16_t>& columns() const { return m_columns; }
    void setRows(int rows);
    int rows() const { return m_rows; }
    void setPixelSize(int pixels);
    int pixelSize() const { return m_pixel; }
    void setChecked(bool checked) { m_checked = checked; }
    bool checked() const { return m_checked; }
    void setSelectionWidth(int columns);
    // false when nothing changed.
    bool setSelection(int first, int count);
    int selectionStart() const { return m_selectionStart; }
    int selectionLength() const { return m_selectionLength; }

    bool ink(int column, int row) const;
    int width() const;  // the drawn size with its margin
    int height() const;
    int pixelLeft(int column) const { return kMargin + column * m_pixel; }
    int pixelTop(int row) const { return kMargin + row * m_pixel; }

    Change press(int x, int y);
    Change move(int x, int y);
    void release() { m_dragging = false; }

private:
    bool pixelAt(int x, int y, int& column, int& row) const;
    int columnAt(int x) const;
    Change paint(int column, int row);

    Mode m_mode;
    std::vector<std::uint16_t> m_columns;
    int m_rows = 9;
    int m_pixel = 4;
    bool m_checked = false;
    int m_selectionWidth = 1;
    int m_selectionStart = -1;
    int m_selectionLength = 0;
    int m_anchor = -1;
    bool m_ink = true; // what a drag in Edit mode paints
    bool m_dragging = false;
};

} // namespace tvx
