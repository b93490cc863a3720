#pragma once

#include "view/GlyphCanvas.h"

#include <QWidget>

#include <cstdint>
#include <vector>

namespace tvx::ui {

// Draws the core's GlyphCanvas (a template, or the binarised columns of a capture region)
// and forwards the mouse to it: pixels edited by clicking and dragging, a range of columns
// selected, or a click as a button.
class GlyphView : public QWidget {
    Q_OBJECT

public:
    enum class Mode { Show, Edit, Select, Button };

    explicit GlyphView(Mode mode = Mode::Show, QWidget* parent = nullptr);

    void setColumns(std::vector<std::uint16_t> columns);
    const std::vector<std::uint16_t>& columns() const { return m_canvas.columns(); }
    void setRows(int rows);
    int rows() const { return m_canvas.rows(); }
    void setPixelSize(int pixels);
    // A button that is the current choice gets a frame.
    void setChecked(bool checked);
    // Columns a click selects in Select mode (the glyph width).
    void setSelectionWidth(int columns) { m_canvas.setSelectionWidth(columns); }
    void setSelection(int first, int count);
    int selectionStart() const { return m_canvas.selectionStart(); }
    int selectionLength() const { return m_canvas.selectionLength(); }

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
    void forward(GlyphCanvas::Change change);

    GlyphCanvas m_canvas;
};

} // namespace tvx::ui
