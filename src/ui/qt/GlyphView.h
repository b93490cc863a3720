#pragma once

#include <QWidget>

#include <algorithm>

#include <cstdint>
#include <vector>

namespace tvx::ui {

// Pixel columns drawn as enlarged pixels, bit y of a column being row y: a template, or
// the binarised columns of a capture region. It can be edited by clicking and dragging
// over pixels, or offer a range of columns to select, or act as a button.
class GlyphView : public QWidget {
    Q_OBJECT

public:
    enum class Mode { Show, Edit, Select, Button };

    explicit GlyphView(Mode mode = Mode::Show, QWidget* parent = nullptr);

    void setColumns(std::vector<std::uint16_t> columns);
    const std::vector<std::uint16_t>& columns() const { return m_columns; }
    void setRows(int rows);
    int rows() const { return m_rows; }
    void setPixelSize(int pixels);
    // A button that is the current choice gets a frame.
    void setChecked(bool checked);
    // Columns a click selects in Select mode (the glyph width).
    void setSelectionWidth(int columns) { m_selectionWidth = std::max(1, columns); }
    void setSelection(int first, int count);
    int selectionStart() const { return m_selectionStart; }
    int selectionLength() const { return m_selectionLength; }

    QPoint pixelCentre(int column, int row) const;
    QSize sizeHint() const override;

signals:
    void columnsEdited();
    void selectionChanged();
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool pixelAt(const QPoint& point, int& column, int& row) const;
    int columnAt(const QPoint& point) const;
    void paintPixel(int column, int row);

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

} // namespace tvx::ui
