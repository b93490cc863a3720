#include "PracticeWindow.h"

#include <QFont>
#include <QKeyEvent>
#include <QPainter>

namespace tvx::practice {
namespace {

QImage toImage(const Frame& frame)
{
    const QImage view(frame.bytes().data(), frame.width(), frame.height(), static_cast<qsizetype>(frame.rowBytes()),
                      QImage::Format_BGR888);
    return view.convertToFormat(QImage::Format_RGB32);
}

QRect toRect(const SceneRect& box)
{
    return {box.x, box.y, box.width, box.height};
}

QRect toRect(const CaptureRegionRect& region)
{
    return {region.StartX, region.StartY, region.SizeX, region.SizeY};
}

void drawLabel(QPainter& painter, const SceneLabel& label)
{
    QFont font = painter.font();
    font.setPixelSize(label.pixelSize);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(QColor(label.colour.red, label.colour.green, label.colour.blue));
    painter.setClipRect(toRect(label.box));
    const Qt::Alignment alignment = (label.alignRight ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
    painter.drawText(toRect(label.box), static_cast<int>(alignment),
                     QString::fromUtf8(label.text.data(), static_cast<qsizetype>(label.text.size())));
    painter.setClipping(false);
}

} // namespace

PracticeWindow::PracticeWindow(const PracticeOptions& options, QWidget* parent)
    : QWidget(parent), m_session(options), m_scene(toImage(m_session.scene()))
{
    setWindowTitle(QString::fromUtf8(options.title.data(), static_cast<qsizetype>(options.title.size())));
    if (!options.windowMode)
        setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setFixedSize(kSceneWidth, kSceneHeight);
    move(0, 0);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_session.drawn();

    m_timer.setInterval(options.tickMs);
    connect(&m_timer, &QTimer::timeout, this, &PracticeWindow::tick);
    m_timer.start();
}

void PracticeWindow::tick()
{
    redraw(m_session.tick());
}

void PracticeWindow::keyPressEvent(QKeyEvent* event)
{
    const auto key = practiceKey(event->key());
    if (!key) {
        QWidget::keyPressEvent(event);
        return;
    }
    redraw(m_session.press(*key));
}

void PracticeWindow::redraw(PracticeSession::Redraw redraw)
{
    if (redraw == PracticeSession::Redraw::Nothing)
        return;
    if (redraw == PracticeSession::Redraw::Scene)
        m_scene = toImage(m_session.scene());
    repaint();
    m_session.drawn();
}

void PracticeWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawImage(0, 0, m_scene);
    for (const SceneLabel& label : sceneLabels(m_session.paused()))
        drawLabel(painter, label);

    // The regions come from the scene untouched, whatever the text drawing did.
    for (const CaptureRegionRect& region : m_session.settings().CaptureRegion)
        painter.drawImage(toRect(region), m_scene, toRect(region));
}

} // namespace tvx::practice
