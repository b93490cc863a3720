#include "GraphFrame.h"

#include <QResizeEvent>

#include "GraphPicture.h"
#include "QtText.h"

#include "config/Settings.h"
#include "graph/GraphLayout.h"
#include "graph/GraphPlot.h"
#include "graph/GraphScale.h"
#include "graph/StepTrap.h"
#include "graph/clsGraphBuffer.h"
#include "meter/MeterState.h"
#include "shell/DebugLog.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>

namespace tvx::ui {
namespace {

constexpr int kLabelFontPixels = 10;
// Scale labels are as high as the gap the layout leaves around each grid line they mark,
// and as wide as the margins beside the picture.
constexpr int kLabelHeight = 12;
constexpr int kScaleLabelWidth = 36;

int px(std::int32_t twips)
{
    return twipsToPixels(twips);
}

TwipSize twipSize(const QWidget* widget)
{
    return {widget->width() * kTwipsPerPixel, widget->height() * kTwipsPerPixel};
}

// A label that fits its text, growing or shrinking to the right of where it stands.
void fitToText(QLabel* label)
{
    const int width = label->fontMetrics().horizontalAdvance(label->text()) + 2;
    label->resize(width, kLabelHeight);
}

} // namespace

GraphFrame::GraphFrame(QWidget* parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("frmGraph"));
    setFrameShape(QFrame::NoFrame);
    QFont labelFont = font();
    labelFont.setPixelSize(kLabelFontPixels);
    setFont(labelFont);

    m_picGraph = new GraphPicture(this);
    connect(m_picGraph, &GraphPicture::clicked, this, &GraphFrame::picGraph_Click);

    auto makeLabel = [this](const QString& name, const QString& text) {
        auto* label = new QLabel(text, this);
        label->setObjectName(name);
        label->installEventFilter(this);
        return label;
    };
    for (int i = 0; i < 4; ++i) {
        QLabel* el = makeLabel(QStringLiteral("lblGraph_El%1").arg(i), QStringLiteral("98,765"));
        el->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        el->resize(kScaleLabelWidth, kLabelHeight);
        m_lblGraph_El[static_cast<std::size_t>(i)] = el;
        QLabel* ml = makeLabel(QStringLiteral("lblGraph_Ml%1").arg(i), QStringLiteral("98,765"));
        ml->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        ml->resize(kScaleLabelWidth, kLabelHeight);
        m_lblGraph_Ml[static_cast<std::size_t>(i)] = ml;
    }
    m_lblGraph_Et = makeLabel(QStringLiteral("lblGraph_Et"), qtText(" k EXP"));
    m_lblGraph_Mt = makeLabel(QStringLiteral("lblGraph_Mt"), qtText(" k ﾒﾙ"));
    m_lblGraph_Tt = makeLabel(QStringLiteral("lblGraph_Tt"), qtText("経過時間(6分間隔)"));
    m_lblGraph_Tl[0] = makeLabel(QStringLiteral("lblGraph_Tl0"), qtText("現在"));
    m_lblGraph_Tl[1] = makeLabel(QStringLiteral("lblGraph_Tl1"), qtText("思ひ出"));
    for (QLabel* label : {m_lblGraph_Et, m_lblGraph_Mt, m_lblGraph_Tt, m_lblGraph_Tl[0], m_lblGraph_Tl[1]})
        fitToText(label);

    const QString zoomIn = qtText(" 縦軸を一時的に拡大 ");
    const QString zoomOut = qtText(" 縦軸を一時的に縮小 ");
    m_lblGraph_El[0]->setToolTip(zoomIn);
    m_lblGraph_Ml[0]->setToolTip(zoomIn);
    m_lblGraph_Et->setToolTip(zoomOut);
    m_lblGraph_Mt->setToolTip(zoomOut);
    m_lblGraph_Tl[1]->setToolTip(qtText(" 時間軸を一時的に過去にひとメモリ移動する "));
    m_lblGraph_Tl[0]->setToolTip(qtText(" 時間軸を一時的に現在にひとメモリ移動する "));
}

bool GraphFrame::graphOn() const
{
    return m_settings != nullptr && m_settings->Graph;
}

void GraphFrame::GraphFrameDisplay()
{
    if (!graphOn())
        return;
    StepTrap trap;
    const GraphFrameInput input{width(),
                                height(),
                                twipSize(m_picGraph),
                                twipSize(m_lblGraph_Tt),
                                twipSize(m_lblGraph_Tl[0]),
                                twipSize(m_lblGraph_Tl[1])};
    const GraphFrameLayout layout = graphFrameLayout(input, trap);

    if (const auto& pic = layout.picGraph)
        m_picGraph->setGeometry(px(pic->left), px(pic->top), px(pic->width), px(pic->height));
    for (std::size_t i = 0; i < 4; ++i) {
        m_lblGraph_El[i]->move(px(layout.scaleLeftE), px(layout.scaleTop[i]));
        m_lblGraph_Ml[i]->move(px(layout.scaleLeftM), px(layout.scaleTop[i]));
    }
    m_lblGraph_Et->move(px(layout.scaleLeftE), px(layout.axisTitleTop));
    m_lblGraph_Mt->move(px(layout.scaleLeftM), px(layout.axisTitleTop));
    m_lblGraph_Tt->move(px(layout.lblGraph_TtLeft), px(layout.timeLabelTop));
    m_lblGraph_Tl[0]->move(px(layout.lblGraph_Tl0Left), px(layout.timeLabelTop));
    m_lblGraph_Tl[1]->move(px(layout.lblGraph_Tl1Left), px(layout.timeLabelTop));
    m_picGraph->setGrid(graphGrid(m_picGraph->width(), m_picGraph->height()));
    trap.report(m_log, "GraphFrameDisplay");

    redraw();
}

void GraphFrame::setSettings(const Settings& settings)
{
    m_settings = &settings;
    StepTrap trap;
    showScaleTexts(Currency(), Currency(), 1.0f, trap);
    trap.report(m_log, "GraphDataDisplay");
}

GraphScaleTexts GraphFrame::showScaleTexts(Currency maxE, Currency maxM, float zoom, StepTrap& trap)
{
    const Settings& settings = *m_settings;
    const GraphScaleTexts texts =
        graphScaleTexts(maxE, maxM, zoom, settings.CaptureInterval, settings.GraphTimeScale, trap, m_intervalSeconds);
    m_lblGraph_Tt->setText(qtText(texts.lblGraph_Tt));
    fitToText(m_lblGraph_Tt);
    for (std::size_t i = 0; i < 4; ++i) {
        m_lblGraph_El[i]->setText(qtText(texts.lblGraph_El[i]));
        m_lblGraph_Ml[i]->setText(qtText(texts.lblGraph_Ml[i]));
    }
    return texts;
}

void GraphFrame::GraphDataDisplay(std::int32_t shift, float zoom)
{
    if (!graphOn())
        return;
    if (m_controls != nullptr && m_controls->runEnabled == m_controls->stopEnabled)
        return;
    const Settings& settings = *m_settings;

    StepTrap trap;
    const Currency maxE = m_buffer != nullptr ? m_buffer->MaxValueRateE() : Currency();
    const Currency maxM = m_buffer != nullptr ? m_buffer->MaxValueRateM() : Currency();
    const GraphScaleTexts texts = showScaleTexts(maxE, maxM, zoom, trap);
    trap.report(m_log, "GraphDataDisplay");

    m_picGraph->clearCurves();
    if (m_buffer != nullptr) {
        const GraphPlotInput input{m_picGraph->width(), m_picGraph->height(), settings.GraphTimeScale, shift,
                                   texts.maxE,          texts.maxM,           settings.MoneyScan};
        m_picGraph->setCurves(plotGraphCurves(*m_buffer, input, trap));
    }
    trap.report(m_log, "GraphDataDisplay 2");
}

void GraphFrame::redraw()
{
    GraphDataDisplay(m_view->timeShift, m_view->zoom);
}

void GraphFrame::zoomBy(bool in)
{
    m_view->zoom = in ? zoomIn(m_view->zoom) : zoomOut(m_view->zoom);
    redraw();
}

void GraphFrame::writeLog(const char* text)
{
    if (m_log == nullptr)
        return;
    try {
        m_log->WriteDebugLog(text);
    } catch (const RuntimeError&) {
        // A log that cannot be written must not stop the click.
    }
}

void GraphFrame::lblGraph_El_Click(int index)
{
    if (index == 0)
        zoomBy(true);
}

void GraphFrame::lblGraph_Ml_Click(int index)
{
    if (index == 0)
        zoomBy(true);
}

void GraphFrame::lblGraph_Et_Click()
{
    zoomBy(false);
}

void GraphFrame::lblGraph_Mt_Click()
{
    zoomBy(false);
}

void GraphFrame::lblGraph_Tl_Click(int index)
{
    writeLog(index == 1 ? "Click : Graph Old View " : "Click : Graph New View ");
    if (m_settings == nullptr)
        return;
    const std::int32_t timeScale = m_settings->GraphTimeScale;
    const std::int32_t length = m_buffer != nullptr ? m_buffer->BufferSize() : clsGraphBuffer::kDefaultSize;
    StepTrap trap;
    trap.run([&] {
        m_view->timeShift = index == 1 ? shiftToPast(m_view->timeShift, timeScale, length)
                                       : shiftToPresent(m_view->timeShift, timeScale);
    });
    trap.report(m_log, "lblGraph_Tl_Click");
    redraw();
}

void GraphFrame::picGraph_Click()
{
    writeLog("Click : Graph Refresh ");
    if (graphOn())
        redraw();
}

void GraphFrame::onLabelClicked(QLabel* label)
{
    for (int i = 0; i < 4; ++i) {
        if (label == m_lblGraph_El[static_cast<std::size_t>(i)])
            return lblGraph_El_Click(i);
        if (label == m_lblGraph_Ml[static_cast<std::size_t>(i)])
            return lblGraph_Ml_Click(i);
    }
    if (label == m_lblGraph_Et)
        return lblGraph_Et_Click();
    if (label == m_lblGraph_Mt)
        return lblGraph_Mt_Click();
    for (int i = 0; i < 2; ++i) {
        if (label == m_lblGraph_Tl[static_cast<std::size_t>(i)])
            return lblGraph_Tl_Click(i);
    }
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
        if (click)
            onLabelClicked(label);
    }
    return QFrame::eventFilter(watched, event);
}

void GraphFrame::resizeEvent(QResizeEvent* event)
{
    QFrame::resizeEvent(event);
    if (m_settings != nullptr)
        GraphFrameDisplay();
}

} // namespace tvx::ui
