#include "GraphPicture.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>

namespace tvx::ui {
namespace {

const QColor kBackground(Qt::white);
const QColor kGridColour(0xC0, 0xC0, 0xC0);
const QColor kExpColour(0x00, 0x00, 0xFF);
const QColor kMoneyColour(0xFF, 0x00, 0x00);

void drawSegments(QPainter& painter, const std::vector<GraphSegment>& segments, const QColor& colour, Qt::PenStyle style)
{
    if (segments.empty())
        return;
    painter.setPen(QPen(colour, 1, style, Qt::FlatCap));
    // Joined segments go out as one polyline so a dotted pattern runs on across them.
    QPolygonF run;
    for (const GraphSegment& s : segments) {
        const QPointF from(s.from.x, s.from.y);
        if (run.isEmpty() || run.last() != from) {
            if (run.size() > 1)
                painter.drawPolyline(run);
            run = QPolygonF{from};
        }
        run << QPointF(s.to.x, s.to.y);
    }
    painter.drawPolyline(run);
}

} // namespace

GraphPicture::GraphPicture(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("picGraph"));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void GraphPicture::setDrawing(const GraphGrid& grid, const GraphCurves& curves)
{
    // A reading that moves no curve paints nothing.
    if (grid == m_grid && curves == m_curves)
        return;
    m_grid = grid;
    m_curves = curves;
    update();
}

void GraphPicture::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kBackground);
    painter.setPen(QPen(kGridColour, 1));
    for (const GridLine& line : m_grid.linGraphX)
        painter.drawLine(line.x1, line.y1, line.x2, line.y2);
    for (const GridLine& line : m_grid.linGraphY)
        painter.drawLine(line.x1, line.y1, line.x2, line.y2);
    drawSegments(painter, m_curves.rateE, kExpColour, Qt::SolidLine);
    drawSegments(painter, m_curves.rateAveE, kExpColour, Qt::DotLine);
    drawSegments(painter, m_curves.rateM, kMoneyColour, Qt::SolidLine);
    drawSegments(painter, m_curves.rateAveM, kMoneyColour, Qt::DotLine);
}

void GraphPicture::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton;
}

void GraphPicture::mouseReleaseEvent(QMouseEvent* event)
{
    // A click is a press and a release over the picture.
    const bool click = m_pressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_pressed = false;
    if (click)
        emit clicked();
}

} // namespace tvx::ui
