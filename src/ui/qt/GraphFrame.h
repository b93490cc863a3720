#pragma once

// moc cannot parse the standard library's C++20 headers; it needs none of these types.
#ifndef Q_MOC_RUN
#include "view/GraphFrameView.h"
#endif

#include <QFrame>

#include <array>
#include <cstdint>

class QLabel;

namespace tvx::ui {

class GraphPicture;

// frmGraph: places and paints what the core's GraphFrameView holds (picture, grid,
// curves, the labels around them) and passes the player's clicks on to it.
class GraphFrame : public QFrame {
    Q_OBJECT

public:
    explicit GraphFrame(QWidget* parent = nullptr);

    void setGraphBuffer(const clsGraphBuffer* buffer) { m_view.setGraphBuffer(buffer); }
    void setGraphView(GraphView& view) { m_view.setGraphView(view); }
    void setSettings(const Settings& settings) { m_view.setSettings(settings); }
    void setMeterControls(const MeterControls* controls) { m_view.setMeterControls(controls); }
    void setDebugLog(DebugLog* log) { m_view.setDebugLog(log); }
    void setIntervalSeconds(std::int32_t seconds) { m_view.setIntervalSeconds(seconds); }

    void GraphFrameDisplay()
    {
        m_view.setFrameSize(width(), height());
        m_view.GraphFrameDisplay();
    }
    void GraphDataDisplay(std::int32_t shift, float zoom) { m_view.GraphDataDisplay(shift, zoom); }
    // The captions and tool tips in the current language.
    void retranslate();

    GraphPicture* picGraph() const { return m_picGraph; }
    QLabel* label(GraphLabel which) const { return m_labels.at(static_cast<std::size_t>(which)); }
    const GraphView& graphView() const { return m_view.graphView(); }
    const GraphFrameView& view() const { return m_view; }

protected:
    // The frame lays itself out again whenever the window gives it another size.
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    // A click on the graph (a label, the picture, the frame) is the graph's own and never
    // reaches the window's background.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void showView();

    GraphFrameView m_view;
    GraphPicture* m_picGraph = nullptr;
    std::array<QLabel*, kGraphLabelCount> m_labels{};
    QLabel* m_pressedLabel = nullptr;
};

} // namespace tvx::ui
