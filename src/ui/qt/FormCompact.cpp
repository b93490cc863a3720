#include "FormCompact.h"

#include "QtText.h"

#include "config/Settings.h"
#include "view/LiveView.h"
#include "view/LiveWindowModel.h"

#include <QActionGroup>
#include <QContextMenuEvent>
#include <QEnterEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPalette>
#include <QPainter>
#include <QScreen>
#include <QToolButton>

#include <cstdint>

namespace tvx::ui {
namespace {

constexpr int kMarkSide = 10;
constexpr int kCloseSide = 16;
constexpr int kCaptionWidth = 96;
const QColor kBackground(24, 26, 30);
const QColor kBorder(110, 116, 128);
const QColor kText(0xf0, 0xf0, 0xf0);
const QColor kCloseHover(0xa0, 0x30, 0x30);

// The window's colours come from palettes and small painters of its own: no style sheet,
// which would put a style over every widget of the program and restyle on each change.
QPalette lightText(QPalette palette)
{
    palette.setColor(QPalette::WindowText, kText);
    palette.setColor(QPalette::ButtonText, kText);
    return palette;
}

QLabel* lineLabel(const QString& name, QWidget* parent, Qt::Alignment alignment = Qt::AlignLeft)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setAlignment(alignment | Qt::AlignVCenter);
    label->setPalette(lightText(label->palette()));
    return label;
}

// The level in heavier strokes: the regular face drawn twice a pixel apart, so that no
// bold face (a second large font file) is loaded for one line.
class HeavyLabel final : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        const QRect box = contentsRect();
        painter.drawText(box, static_cast<int>(alignment()), text());
        painter.drawText(box.translated(1, 0), static_cast<int>(alignment()), text());
    }
};

// The close cross, red under the cursor.
class CloseButton final : public QToolButton {
public:
    using QToolButton::QToolButton;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (underMouse())
            painter.fillRect(rect(), kCloseHover);
        painter.setPen(kText);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
    void enterEvent(QEnterEvent* event) override
    {
        update();
        QToolButton::enterEvent(event);
    }
    void leaveEvent(QEvent* event) override
    {
        update();
        QToolButton::leaveEvent(event);
    }
};

int rowTop(int row)
{
    return kCompactMargin + row * kCompactLineHeight;
}

} // namespace

// The state's round mark in its colour.
class CompactMark final : public QLabel {
public:
    using QLabel::QLabel;

    void setColour(std::uint32_t rgb)
    {
        m_colour = QColor::fromRgb(static_cast<QRgb>(rgb));
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_colour);
        painter.drawEllipse(QRectF(rect()));
    }

private:
    QColor m_colour = Qt::transparent;
};

FormCompact::FormCompact(Settings& settings, std::function<void()> remember, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint), m_settings(settings),
      m_remember(std::move(remember))
{
    setObjectName(QStringLiteral("frmCompact"));
    setWindowTitle(qtTr(kCompactTitle));
    // Taken anywhere, it moves: the cursor says so.
    setCursor(Qt::SizeAllCursor);
    const int inner = kCompactWidth - 2 * kCompactMargin;

    m_shpState = new CompactMark(this);
    m_shpState->setObjectName(QStringLiteral("shpState"));
    m_shpState->setGeometry(kCompactMargin, rowTop(0) + (kCompactLineHeight - kMarkSide) / 2, kMarkSide, kMarkSide);
    m_lblState = lineLabel(QStringLiteral("lblState"), this);
    m_lblState->setGeometry(kCompactMargin + kMarkSide + 6, rowTop(0), inner - kMarkSide - 6 - kCloseSide,
                            kCompactLineHeight);
    m_cmdClose = new CloseButton(this);
    m_cmdClose->setObjectName(QStringLiteral("cmdClose"));
    m_cmdClose->setText(QStringLiteral("×"));
    m_cmdClose->setToolTip(qtTr(kCompactCloseCaption));
    m_cmdClose->setAutoRaise(true);
    m_cmdClose->setCursor(Qt::ArrowCursor);
    m_cmdClose->setGeometry(kCompactWidth - kCompactMargin - kCloseSide, rowTop(0) + 1, kCloseSide, kCloseSide);
    connect(m_cmdClose, &QToolButton::clicked, this, &QWidget::close);

    m_lblLevel = new HeavyLabel(this);
    m_lblLevel->setObjectName(QStringLiteral("lblLevel"));
    m_lblLevel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_lblLevel->setPalette(lightText(m_lblLevel->palette()));
    m_lblLevel->setGeometry(kCompactMargin, rowTop(1), inner, kCompactLineHeight);
    setOpacity(m_settings.CompactOpacity);
}

void FormCompact::setLineCount(std::size_t count)
{
    const int inner = kCompactWidth - 2 * kCompactMargin;
    while (m_lines.size() < count) {
        const int at = static_cast<int>(m_lines.size());
        QLabel* caption = lineLabel(QStringLiteral("lblCaption%1").arg(at), this);
        QLabel* value = lineLabel(QStringLiteral("lblValue%1").arg(at), this, Qt::AlignRight);
        caption->setGeometry(kCompactMargin, rowTop(at + 2), kCaptionWidth, kCompactLineHeight);
        value->setGeometry(kCompactMargin + kCaptionWidth, rowTop(at + 2), inner - kCaptionWidth, kCompactLineHeight);
        caption->show();
        value->show();
        m_lines.emplace_back(caption, value);
    }
    while (m_lines.size() > count) {
        delete m_lines.back().first;
        delete m_lines.back().second;
        m_lines.pop_back();
    }
    // The state line stands above the level and the lines.
    const PixelRect rect = compactWindowRect(m_settings, 0, 0, count + 1);
    setFixedSize(rect.width, rect.height);
}

void FormCompact::showView(const LiveView& view)
{
    setLineCount(view.compact.size());
    // The mark is repainted only for a new colour.
    if (m_shpState->property("stateColour") != QVariant(view.stateColour)) {
        m_shpState->setColour(view.stateColour);
        m_shpState->setProperty("stateColour", view.stateColour);
    }
    m_lblState->setText(qtText(view.stateText));
    m_lblLevel->setText(qtText(view.levelText));
    for (std::size_t i = 0; i < view.compact.size(); ++i) {
        m_lines[i].first->setText(qtText(view.compact[i].caption));
        m_lines[i].second->setText(qtText(view.compact[i].value));
    }
    // A full-screen game may have come in front since: every new figure puts it back on top.
    if (isVisible())
        raise();
}

void FormCompact::place()
{
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const PixelRect rect = compactWindowRect(m_settings, screen.width(), screen.height(), m_lines.size() + 1);
    move(rect.left, rect.top);
}

void FormCompact::open()
{
    place();
    setOpacity(m_settings.CompactOpacity);
    show();
    raise();
    m_settings.CompactShown = true;
    if (m_remember)
        m_remember();
}

void FormCompact::followSettings()
{
    setOpacity(m_settings.CompactOpacity);
    if (!isVisible())
        return;
    if (m_settings.CompactShown)
        place();
    else
        hide();
}

void FormCompact::retranslate()
{
    setWindowTitle(qtTr(kCompactTitle));
    m_cmdClose->setToolTip(qtTr(kCompactCloseCaption));
}

void FormCompact::setOpacity(int percent)
{
    setWindowOpacity(percent / 100.0);
}

void FormCompact::rememberPlace()
{
    m_settings.CompactX = x();
    m_settings.CompactY = y();
    if (m_remember)
        m_remember();
}

QMenu* FormCompact::makeMenu()
{
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("mnuCompact"));
    auto* opacities = new QActionGroup(menu);
    for (const std::int32_t percent : kCompactOpacities) {
        QAction* item = menu->addAction(qtText(compactOpacityCaption(percent)));
        item->setObjectName(QStringLiteral("menuOpacity%1").arg(percent));
        item->setCheckable(true);
        item->setChecked(percent == m_settings.CompactOpacity);
        opacities->addAction(item);
        connect(item, &QAction::triggered, this, [this, percent] {
            m_settings.CompactOpacity = percent;
            setOpacity(percent);
            if (m_remember)
                m_remember();
        });
    }
    menu->addSeparator();
    QAction* close = menu->addAction(qtTr(kCompactCloseCaption));
    close->setObjectName(QStringLiteral("menuClose"));
    connect(close, &QAction::triggered, this, &QWidget::close);
    return menu;
}

void FormCompact::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu* menu = makeMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

void FormCompact::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    m_grip = event->globalPosition().toPoint() - pos();
    m_dragged = false;
}

void FormCompact::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_grip || !(event->buttons() & Qt::LeftButton))
        return QWidget::mouseMoveEvent(event);
    move(event->globalPosition().toPoint() - *m_grip);
    m_dragged = true;
}

void FormCompact::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_grip)
        return QWidget::mouseReleaseEvent(event);
    m_grip.reset();
    // Saved once the window is put down, not at every step of the drag.
    if (m_dragged)
        rememberPlace();
}

void FormCompact::closeEvent(QCloseEvent* event)
{
    // Closed by the player: it stays closed at the next start. The main window only hides it.
    // Its place was kept when it was put down; never moved, it keeps following the corner.
    m_settings.CompactShown = false;
    if (m_remember)
        m_remember();
    QWidget::closeEvent(event);
}

void FormCompact::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kBackground);
    painter.setPen(kBorder);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace tvx::ui
