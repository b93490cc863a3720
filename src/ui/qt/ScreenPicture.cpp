#include "ScreenPicture.h"

#include "CaptureImage.h"
#include "QtText.h"

#include "view/RegionPicker.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tvx::ui {

ScreenPicture::ScreenPicture(RegionPicker& picker, QWidget* parent) : QWidget(parent), m_picker(picker)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
    refresh();
}

void ScreenPicture::refresh()
{
    const auto& screen = m_picker.screen();
    m_image = screen ? regionImage(*screen, {0, 0, m_picker.screenWidth(), m_picker.screenHeight()}) : QImage();
    const int zoom = m_picker.zoom();
    setFixedSize(m_image.isNull() ? QSize(320, 160) : m_image.size() * zoom);
    update();
}

QSize ScreenPicture::sizeHint() const
{
    return size();
}

void ScreenPicture::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), QColor(60, 60, 60));
    if (m_image.isNull()) {
        painter.setPen(Qt::white);
        painter.drawText(rect(), Qt::AlignCenter, qtText(kNoScreenHint));
        return;
    }
    const int zoom = m_picker.zoom();
    // Only the part in view is scaled, so a large zoom stays quick.
    const QRect source(event->rect().topLeft() / zoom, event->rect().bottomRight() / zoom + QPoint(1, 1));
    painter.drawImage(QRect(source.topLeft() * zoom, source.size() * zoom), m_image, source);
    for (int r = 0; r < kRegionCount; ++r) {
        const CaptureRegionRect box = m_picker.pictureRect(r);
        const bool selected = r == m_picker.selectedRegion();
        painter.setPen(QPen(QColor::fromRgb(tvx::regionColour(r)), selected ? 2 : 1, selected ? Qt::SolidLine : Qt::DashLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(box.StartX, box.StartY, box.SizeX - 1, box.SizeY - 1);
    }
}

void ScreenPicture::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        moved(m_picker.press(event->position().toPoint().x(), event->position().toPoint().y()));
}

void ScreenPicture::mouseMoveEvent(QMouseEvent* event)
{
    if (m_picker.dragging())
        moved(m_picker.drag(event->position().toPoint().x(), event->position().toPoint().y()));
}

void ScreenPicture::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_picker.dragging())
        moved(m_picker.release(event->position().toPoint().x(), event->position().toPoint().y()));
}

void ScreenPicture::keyPressEvent(QKeyEvent* event)
{
    const std::pair<int, QPoint> steps[] = {
        {Qt::Key_Left, {-1, 0}}, {Qt::Key_Right, {1, 0}}, {Qt::Key_Up, {0, -1}}, {Qt::Key_Down, {0, 1}}};
    for (const auto& [key, step] : steps) {
        if (event->key() == key) {
            moved(m_picker.nudge(step.x(), step.y()));
            return;
        }
    }
    QWidget::keyPressEvent(event);
}

void ScreenPicture::moved(bool changed)
{
    if (!changed)
        return;
    update();
    emit regionMoved(m_picker.selectedRegion());
}

} // namespace tvx::ui
