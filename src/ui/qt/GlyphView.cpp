#include "GlyphView.h"

#include <QMouseEvent>
#include <QPainter>

namespace tvx::ui {
namespace {

GlyphCanvas::Mode canvasMode(GlyphView::Mode mode)
{
    switch (mode) {
    case GlyphView::Mode::Edit:
        return GlyphCanvas::Mode::Edit;
    case GlyphView::Mode::Select:
        return GlyphCanvas::Mode::Select;
    case GlyphView::Mode::Button:
        return GlyphCanvas::Mode::Button;
    case GlyphView::Mode::Show:
        break;
    }
    return GlyphCanvas::Mode::Show;
}

} // namespace

GlyphView::GlyphView(Mode mode, QWidget* parent) : QWidget(parent), m_canvas(canvasMode(mode))
{
    if (mode != Mode::Show)
        setCursor(mode == Mode::Edit ? Qt::CrossCursor : Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void GlyphView::setColumns(std::vector<std::uint16_t> columns)
{
    const int selected = m_canvas.selectionStart();
    m_canvas.setColumns(std::move(columns));
    if (selected != m_canvas.selectionStart())
        emit selectionChanged();
    updateGeometry();
    update();
}

void GlyphView::setRows(int rows)
{
    m_canvas.setRows(rows);
    updateGeometry();
    update();
}

void GlyphView::setPixelSize(int pixels)
{
    m_canvas.setPixelSize(pixels);
    updateGeometry();
    update();
}

void GlyphView::setChecked(bool checked)
{
    m_canvas.setChecked(checked);
    update();
}

void GlyphView::setSelection(int first, int count)
{
    if (!m_canvas.setSelection(first, count))
        return;
    update();
    emit selectionChanged();
}

QSize GlyphView::sizeHint() const
{
    return {m_canvas.width(), m_canvas.height()};
}

QPoint GlyphView::pixelCentre(int column, int row) const
{
    return {m_canvas.pixelLeft(column) + m_canvas.pixelSize() / 2, m_canvas.pixelTop(row) + m_canvas.pixelSize() / 2};
}

void GlyphView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int pixel = m_canvas.pixelSize();
    const int columns = static_cast<int>(m_canvas.columns().size());
    const QRect area(m_canvas.pixelLeft(0), m_canvas.pixelTop(0), columns * pixel, m_canvas.rows() * pixel);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(area, Qt::white);
    for (int x = 0; x < columns; ++x)
        for (int y = 0; y < m_canvas.rows(); ++y)
            if (m_canvas.ink(x, y))
                painter.fillRect(m_canvas.pixelLeft(x), m_canvas.pixelTop(y), pixel, pixel, Qt::black);
    if (pixel >= 6) { // a grid where a pixel is big enough to aim at
        painter.setPen(QColor(200, 200, 200));
        for (int x = 0; x <= columns; ++x)
            painter.drawLine(area.left() + x * pixel, area.top(), area.left() + x * pixel, area.bottom());
        for (int y = 0; y <= m_canvas.rows(); ++y)
            painter.drawLine(area.left(), area.top() + y * pixel, area.right(), area.top() + y * pixel);
    }
    if (m_canvas.selectionLength() > 0) {
        const QRect selected(m_canvas.pixelLeft(m_canvas.selectionStart()), 0, m_canvas.selectionLength() * pixel,
                             height());
        painter.fillRect(selected, QColor(40, 120, 255, 90));
        painter.setPen(QPen(QColor(0, 80, 220), 1));
        painter.drawRect(selected.adjusted(0, 0, -1, -1));
    }
    if (m_canvas.checked()) {
        painter.setPen(QPen(QColor(0, 80, 220), 2));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void GlyphView::forward(GlyphCanvas::Change change)
{
    switch (change) {
    case GlyphCanvas::Change::Columns:
        update();
        emit columnsEdited();
        break;
    case GlyphCanvas::Change::Selection:
        update();
        emit selectionChanged();
        break;
    case GlyphCanvas::Change::Clicked:
        emit clicked();
        break;
    case GlyphCanvas::Change::None:
        break;
    }
}

void GlyphView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        forward(m_canvas.press(event->position().toPoint().x(), event->position().toPoint().y()));
}

void GlyphView::mouseMoveEvent(QMouseEvent* event)
{
    forward(m_canvas.move(event->position().toPoint().x(), event->position().toPoint().y()));
}

void GlyphView::mouseReleaseEvent(QMouseEvent*)
{
    m_canvas.release();
}

} // namespace tvx::ui
