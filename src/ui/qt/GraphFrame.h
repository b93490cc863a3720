#pragma once

#include "graph/GraphView.h"

#include <QFrame>

#include <array>
#include <cstdint>

class QLabel;

namespace tvx {
class DebugLog;
class clsGraphBuffer;
class Currency;
class StepTrap;
struct GraphScaleTexts;
struct MeterControls;
struct Settings;
} // namespace tvx

namespace tvx::ui {

class GraphPicture;

// frmGraph: the rate graph beside the account. Experience is drawn in blue against the
// left scale, money in red against the right one; the labels around the picture zoom the
// value axis and move the time axis until the next entry puts the view back.
//
// The frame reads what it is given and owns none of it. Without settings it stays blank;
// without a buffer it draws scales for an empty history; without run/stop controls it
// draws whenever the graph is on; without a view it keeps one of its own.
class GraphFrame : public QFrame {
    Q_OBJECT

public:
    explicit GraphFrame(QWidget* parent = nullptr);

    void setGraphBuffer(const clsGraphBuffer* buffer) { m_buffer = buffer; }
    void setGraphView(GraphView& view) { m_view = &view; }
    // Also puts the empty graph's scale texts in place of the placeholders.
    void setSettings(const Settings& settings);
    // Drawing is allowed only while exactly one of menuRun and menuStop is enabled.
    void setMeterControls(const MeterControls* controls) { m_controls = controls; }
    void setDebugLog(DebugLog* log) { m_log = log; }
    // Captures every few seconds instead of CaptureInterval minutes (0: the setting).
    void setIntervalSeconds(std::int32_t seconds) { m_intervalSeconds = seconds; }

    // Places the picture, labels and grid for the frame's present size, then redraws
    // with the current view. Call it after every change of the frame's size.
    void GraphFrameDisplay();
    // Redraws the scale labels, the time-axis title and the curves.
    void GraphDataDisplay(std::int32_t shift, float zoom);

    // Click handlers; the controls call them, and so may the main window.
    void lblGraph_El_Click(int index);
    void lblGraph_Ml_Click(int index);
    void lblGraph_Et_Click();
    void lblGraph_Mt_Click();
    void lblGraph_Tl_Click(int index);
    void picGraph_Click();

    GraphPicture* picGraph() const { return m_picGraph; }
    QLabel* lblGraph_El(int index) const { return m_lblGraph_El.at(static_cast<std::size_t>(index)); }
    QLabel* lblGraph_Ml(int index) const { return m_lblGraph_Ml.at(static_cast<std::size_t>(index)); }
    QLabel* lblGraph_Et() const { return m_lblGraph_Et; }
    QLabel* lblGraph_Mt() const { return m_lblGraph_Mt; }
    QLabel* lblGraph_Tt() const { return m_lblGraph_Tt; }
    QLabel* lblGraph_Tl(int index) const { return m_lblGraph_Tl.at(static_cast<std::size_t>(index)); }
    const GraphView& graphView() const { return *m_view; }

protected:
    // The frame lays itself out again whenever the window gives it another size.
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The scale labels for these maxima; returns the texts for the curves.
    GraphScaleTexts showScaleTexts(Currency maxE, Currency maxM, float zoom, StepTrap& trap);
    bool graphOn() const;
    void redraw();
    void zoomBy(bool in);
    void writeLog(const char* text);
    void onLabelClicked(QLabel* label);

    const clsGraphBuffer* m_buffer = nullptr;
    GraphView m_ownView;
    GraphView* m_view = &m_ownView;
    const Settings* m_settings = nullptr;
    std::int32_t m_intervalSeconds = 0;
    const MeterControls* m_controls = nullptr;
    DebugLog* m_log = nullptr;

    GraphPicture* m_picGraph = nullptr;
    std::array<QLabel*, 4> m_lblGraph_El{};
    std::array<QLabel*, 4> m_lblGraph_Ml{};
    QLabel* m_lblGraph_Et = nullptr;
    QLabel* m_lblGraph_Mt = nullptr;
    QLabel* m_lblGraph_Tt = nullptr;
    std::array<QLabel*, 2> m_lblGraph_Tl{};
    QLabel* m_pressedLabel = nullptr;
};

} // namespace tvx::ui
