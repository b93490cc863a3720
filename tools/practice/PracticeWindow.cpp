#include "PracticeWindow.h"

#include "PracticeScene.h"

#include "base/Utf8Path.h"

#include <QFont>
#include <QKeyEvent>
#include <QPainter>

#include <chrono>
#include <fstream>

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

void drawLabel(QPainter& painter, const SceneRect& box, const QString& text, int pixelSize, const QColor& colour,
               Qt::Alignment alignment)
{
    QFont font = painter.font();
    font.setPixelSize(pixelSize);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(colour);
    painter.setClipRect(toRect(box));
    painter.drawText(toRect(box), static_cast<int>(alignment | Qt::AlignVCenter), text);
    painter.setClipping(false);
}

} // namespace

PracticeWindow::PracticeWindow(const PracticeOptions& options, QWidget* parent)
    : QWidget(parent), m_options(options), m_settings(defaultSettings("")), m_character(options.start),
      m_shown(m_character.state())
{
    setWindowTitle(QString::fromUtf8(options.title.data(), static_cast<qsizetype>(options.title.size())));
    if (!options.windowMode)
        setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setFixedSize(kSceneWidth, kSceneHeight);
    move(0, 0);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);

    m_scene = toImage(paintScene(m_settings, m_shown));
    appendStateLine();

    m_timer.setInterval(options.tickMs);
    connect(&m_timer, &QTimer::timeout, this, &PracticeWindow::tick);
    m_timer.start();
}

QString PracticeWindow::hintText(bool paused)
{
    const QString keys = QStringLiteral("D:死亡（レベル-1・経験値0から）　C:キャラ変更　U:レベルアップ　Space:一時停止/再開");
    return paused ? QStringLiteral("【一時停止中】　") + keys : keys;
}

void PracticeWindow::tick()
{
    if (m_paused)
        return;
    m_character.rise(m_options.expPerTick, m_options.moneyPerTick);
    showState();
}

void PracticeWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_D:
        m_character.die();
        break;
    case Qt::Key_C:
        m_character.change();
        break;
    case Qt::Key_U:
        m_character.levelUp();
        break;
    case Qt::Key_Space:
        m_paused = !m_paused;
        repaint();
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    showState();
}

void PracticeWindow::showState()
{
    if (m_character.state() == m_shown)
        return;
    m_shown = m_character.state();
    m_scene = toImage(paintScene(m_settings, m_shown));
    repaint();
    appendStateLine();
}

void PracticeWindow::appendStateLine() const
{
    if (m_options.stateFile.empty())
        return;
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    // Opened and closed per line so a reader sees every line as soon as it is drawn.
    std::ofstream out(utf8Path(m_options.stateFile), std::ios::app);
    out << now << ' ' << m_shown.level << ' ' << m_shown.exp << ' ' << m_shown.money << '\n';
}

void PracticeWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.drawImage(0, 0, m_scene);

    painter.fillRect(toRect(kHintBox), QColor(0, 0, 0, 150));
    drawLabel(painter, {kHintBox.x + 8, kHintBox.y, kHintBox.width - 16, kHintBox.height}, hintText(m_paused), 13,
              Qt::white, Qt::AlignLeft);
    drawLabel(painter, kLevelLabel, QStringLiteral("Lv."), 12, QColor(255, 220, 90), Qt::AlignRight);
    drawLabel(painter, kExpLabel, QStringLiteral("EXP"), 11, QColor(255, 240, 160), Qt::AlignRight);
    drawLabel(painter, kMoneyTitle, QStringLiteral("所持金（メル）"), 13, Qt::white, Qt::AlignLeft);

    // The regions come from the scene untouched, whatever the text drawing did.
    for (const CaptureRegionRect& region : m_settings.CaptureRegion)
        painter.drawImage(toRect(region), m_scene, toRect(region));
}

} // namespace tvx::practice
