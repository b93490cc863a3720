#include "GlyphView.h"

#include <QMouseEvent>
#include <QPainter>

namespace tvx::ui {
namespace {

constexpr int kMargin = 2;

} // namespace

GlyphView::GlyphView(Mode mode, QWidget* parent) : QWidget(parent), m_mode(mode)
{
    if (mode != Mode::Show)
        setCursor(mode == Mode::Edit ? Qt::CrossCursor : Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void GlyphView::setColumns(std::vector<std::uint16_t> columns)
{
    m_columns = std::move(columns);
    if (m_selectionStart >= static_cast<int>(m_columns.size()))
        setSelection(-1, 0);
    updateGeometry();
    update();
}

void GlyphView::setRows(int rows)
{
    m_rows = std::clamp(rows, 1, 16);
    updateGeometry();
    update();
}

void GlyphView::setPixelSize(int pixels)
{
    m_pixel = std::max(1, pixels);
    updateGeometry();
    update();
}

void GlyphView::setChecked(bool checked)
{
    m_checked = checked;
    update();
}

void GlyphView::setSelection(int first, int count)
{
    const int size = static_cast<int>(m_columns.size());
    if (first < 0 || count <= 0 || first >= size) {
        first = -1;
        count = 0;
    } else {
        count = std::min(count, size - first);
    }
    if (first == m_selectionStart && count == m_selectionLength)
        return;
    m_selectionStart = first;
    m_selectionLength = count;
    update();
    emit selectionChanged();
}

QSize GlyphView::sizeHint() const
{
    const int columns = std::max<int>(1, static_cast<int>(m_columns.size()));
    return {columns * m_pixel + 2 * kMargin, m_rows * m_pixel + 2 * kMargin};
}

QPoint GlyphView::pixelCentre(int column, int row) const
{
    return {kMargin + column * m_pixel + m_pixel / 2, kMargin + row * m_pixel + m_pixel / 2};
}

void GlyphView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect area(kMargin, kMargin, static_cast<int>(m_columns.size()) * m_pixel, m_rows * m_pixel);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(area, Qt::white);
    for (int x = 0; x < static_cast<int>(m_columns.size()); ++x)
        for (int y = 0; y < m_rows; ++y)
            if (m_columns[static_cast<std::size_t>(x)] & (1u << y))
                painter.fillRect(kMargin + x * m_pixel, kMargin + y * m_pixel, m_pixel, m_pixel, Qt::black);
    if (m_pixel >= 6) {
        painter.setPen(QColor(200, 200, 200));
        for (int x = 0; x <= static_cast<int>(m_columns.size()); ++x)
            painter.drawLine(area.left() + x * m_pixel, area.top(), area.left() + x * m_pixel, area.bottom());
        for (int y = 0; y <= m_rows; ++y)
            painter.drawLine(area.left(), area.top() + y * m_pixel, area.right(), area.top() + y * m_pixel);
    }
    if (m_selectionLength > 0) {
        const QRect selected(kMargin + m_selectionStart * m_pixel, 0, m_selectionLength * m_pixel, height());
        painter.fillRect(selected, QColor(40, 120, 255, 90));
        painter.setPen(QPen(QColor(0, 80, 220), 1));
        painter.drawRect(selected.adjusted(0, 0, -1, -1));
    }
    if (m_checked) {
        painter.setPen(QPen(QColor(0, 80, 220), 2));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

bool GlyphView::pixelAt(const QPoint& point, int& column, int& row) const
{
    column = (point.x() - kMargin) / m_pixel;
    row = (point.y() - kMargin) / m_pixel;
    return point.x() >= kMargin && point.y() >= kMargin && column < static_cast<int>(m_columns.size()) &&
           row < m_rows;
}

int GlyphView::columnAt(const QPoint& point) const
{
    const int last = static_cast<int>(m_columns.size()) - 1;
    return std::clamp((point.x() - kMargin) / m_pixel, 0, std::max(0, last));
}

void GlyphView::paintPixel(int column, int row)
{
    auto& value = m_columns[static_cast<std::size_t>(column)];
    const auto bit = static_cast<std::uint16_t>(1u << row);
    const auto next = static_cast<std::uint16_t>(m_ink ? value | bit : value & ~bit);
    if (next == value)
        return;
    value = next;
    update();
    emit columnsEdited();
}

void GlyphView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    int column = 0;
    int row = 0;
    switch (m_mode) {
    case Mode::Edit:
        if (pixelAt(event->position().toPoint(), column, row)) {
            m_ink = !(m_columns[static_cast<std::size_t>(column)] & (1u << row));
            m_dragging = true;
            paintPixel(column, row);
        }
        break;
    case Mode::Select:
        if (!m_columns.empty()) {
            // A click takes one glyph's width from the column clicked; a drag any range.
            m_anchor = columnAt(event->position().toPoint());
            m_dragging = true;
            setSelection(m_anchor, m_selectionWidth);
        }
        break;
    case Mode::Button:
        emit clicked();
        break;
    case Mode::Show:
        break;
    }
}

void GlyphView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_dragging)
        return;
    int column = 0;
    int row = 0;
    if (m_mode == Mode::Edit && pixelAt(event->position().toPoint(), column, row))
        paintPixel(column, row);
    if (m_mode == Mode::Select) {
        const int here = columnAt(event->position().toPoint());
        if (here != m_anchor)
            setSelection(std::min(here, m_anchor), std::abs(here - m_anchor) + 1);
    }
}

void GlyphView::mouseReleaseEvent(QMouseEvent*)
{
    m_dragging = false;
}

} // namespace tvx::ui
