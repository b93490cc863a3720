#include "GraphFrame.h"

#include "GraphPicture.h"
#include "QtText.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QResizeEvent>

namespace tvx::ui {

GraphFrame::GraphFrame(QWidget* parent)
    : QFrame(parent), m_view([this](std::string_view text) {
          return static_cast<std::int32_t>(fontMetrics().horizontalAdvance(qtText(text)));
      })
{
    setObjectName(QStringLiteral("frmGraph"));
    setFrameShape(QFrame::NoFrame);
    QFont labelFont = font();
    labelFont.setPixelSize(GraphFrameView::kLabelFontPixels);
    setFont(labelFont);
    // The view measured its labels before the frame had its font.
    m_view.fitLabels();

    m_picGraph = new GraphPicture(this);
    connect(m_picGraph, &GraphPicture::clicked, this, [this] { m_view.picGraph_Click(); });
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        const GraphLabelView& model = m_view.labels()[i];
        auto* label = new QLabel(this);
        label->setObjectName(qtText(model.name));
        label->setToolTip(qtText(model.toolTip));
        label->setAlignment((model.align == TextAlign::Right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        label->installEventFilter(this);
        m_labels[i] = label;
    }
    m_view.setChanged([this] { showView(); });
    showView();
}

void GraphFrame::retranslate()
{
    m_view.retranslate();
    for (std::size_t i = 0; i < kGraphLabelCount; ++i)
        m_labels[i]->setToolTip(qtText(m_view.labels()[i].toolTip));
    showView();
}

void GraphFrame::showView()
{
    for (std::size_t i = 0; i < kGraphLabelCount; ++i) {
        const GraphLabelView& model = m_view.labels()[i];
        m_labels[i]->setText(qtText(model.text));
        m_labels[i]->setGeometry(model.rect.left, model.rect.top, model.rect.width, model.rect.height);
    }
    const PixelRect& picture = m_view.picGraph();
    m_picGraph->setGeometry(picture.left, picture.top, picture.width, picture.height);
    m_picGraph->setDrawing(m_view.grid(), m_view.curves());
}

bool GraphFrame::eventFilter(QObject* watched, QEvent* event)
{
    auto* label = qobject_cast<QLabel*>(watched);
    if (label == nullptr || label->parent() != this)
        return QFrame::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonPress) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        m_pressedLabel = mouse->button() == Qt::LeftButton ? label : nullptr;
    } else if (event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        // A click is a press and a release over the same label.
        const bool click = label == m_pressedLabel && mouse->button() == Qt::LeftButton &&
                           label->rect().contains(mouse->position().toPoint());
        m_pressedLabel = nullptr;
        for (std::size_t i = 0; click && i < kGraphLabelCount; ++i)
            if (m_labels[i] == label)
                m_view.click(static_cast<GraphLabel>(i));
    }
    return QFrame::eventFilter(watched, event);
}

void GraphFrame::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void GraphFrame::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void GraphFrame::resizeEvent(QResizeEvent* event)
{
    QFrame::resizeEvent(event);
    GraphFrameDisplay();
}

} // namespace tvx::ui
