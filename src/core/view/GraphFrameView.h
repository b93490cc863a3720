#pragma once

#include "graph/GraphPlot.h"
#include "graph/GraphView.h"
#include "view/PixelRect.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tvx {

class DebugLog;
class StepTrap;
class clsGraphBuffer;
struct GraphScaleTexts;
struct MeterControls;
struct Settings;

// The labels around the graph's picture, in the order of `GraphFrameView::labels()`.
enum class GraphLabel : std::uint8_t { El0, El1, El2, El3, Ml0, Ml1, Ml2, Ml3, Et, Mt, Tt, Tl0, Tl1 };
inline constexpr std::size_t kGraphLabelCount = 13;

enum class TextAlign : std::uint8_t { Left, Right };

struct GraphLabelView {
    std::string_view name; // control name, e.g. "lblGraph_El0"
    std::string text;
    std::string_view toolTip; // empty: none
    TextAlign align = TextAlign::Left;
    PixelRect rect;           // in the frame
};

// frmGraph as every front end shows it: the picture with its grid and curves, the scale
// labels left (experience, blue) and right (money, red), the axis titles and the two ends
// of the time axis. Clicks on the labels zoom the value axis and move the time axis until
// the next entry puts the view back. A window places and paints what this holds and
// passes clicks on; `changed` tells it when to look again.
//
// It reads what it is given and owns none of it. Without settings it stays blank; without
// a buffer it draws scales for an empty history; without run/stop controls it draws
// whenever the graph is on; without a view it keeps one of its own.
class GraphFrameView {
public:
    static constexpr std::int32_t kLabelFontPixels = 10;
    // Scale labels are as high as the gap around each grid line they mark, and as wide as
    // the margins beside the picture; the other labels fit their text.
    static constexpr std::int32_t kLabelHeight = 12;
    static constexpr std::int32_t kScaleLabelWidth = 36;

    // The width in pixels of a label's text in the front end's label font.
    using MeasureText = std::function<std::int32_t(std::string_view)>;

    explicit GraphFrameView(MeasureText measure);
    GraphFrameView(const GraphFrameView&) = delete;
    GraphFrameView& operator=(const GraphFrameView&) = delete;

    // Fits the labels that follow their text again, after the front end's font changed.
    void fitLabels();
    // Sets the captions and tool tips again in the current language, then lays out anew.
    void retranslate();

    void setGraphBuffer(const clsGraphBuffer* buffer) { m_buffer = buffer; }
    void setGraphView(GraphView& view) { m_view = &view; }
    // Also puts the empty graph's scale texts in place of the placeholders.
    void setSettings(const Settings& settings);
    // Captures every few seconds instead of CaptureInterval minutes (0: the setting).
    void setIntervalSeconds(std::int32_t seconds) { m_intervalSeconds = seconds; }
    // Drawing is allowed only while exactly one of menuRun and menuStop is enabled.
    void setMeterControls(const MeterControls* controls) { m_controls = controls; }
    void setDebugLog(DebugLog* log) { m_log = log; }
    void setChanged(std::function<void()> changed) { m_changed = std::move(changed); }

    // The frame's size in pixels, read by the next GraphFrameDisplay.
    void setFrameSize(std::int32_t width, std::int32_t height);
    // Places the picture, labels and grid for the frame's size, then redraws.
    void GraphFrameDisplay();
    // The scale labels, the time-axis title and the curves.
    void GraphDataDisplay(std::int32_t shift, float zoom);

    void click(GraphLabel label);
    void picGraph_Click();
    // A click at a point of the frame: on a label, on the picture, or on nothing.
    void clickAt(std::int32_t x, std::int32_t y);

    const std::array<GraphLabelView, kGraphLabelCount>& labels() const { return m_labels; }
    const GraphLabelView& label(GraphLabel which) const { return m_labels[static_cast<std::size_t>(which)]; }
    const PixelRect& picGraph() const { return m_picture; }
    const GraphGrid& grid() const { return m_grid; }
    const GraphCurves& curves() const { return m_curves; }
    const GraphView& graphView() const { return *m_view; }
    bool graphOn() const;

private:
    GraphLabelView& at(GraphLabel which) { return m_labels[static_cast<std::size_t>(which)]; }
    GraphScaleTexts showScaleTexts(const Currency& maxE, const Currency& maxM, float zoom, StepTrap& trap);
    void fitToText(GraphLabel which);
    void fitScaleLabels();
    void redraw();
    void zoomBy(bool in);
    void moveTime(bool toPast);
    void writeLog(std::string_view text);
    void notify();

    MeasureText m_measure;
    const clsGraphBuffer* m_buffer = nullptr;
    GraphView m_ownView;
    GraphView* m_view = &m_ownView;
    const Settings* m_settings = nullptr;
    std::int32_t m_intervalSeconds = 0;
    const MeterControls* m_controls = nullptr;
    DebugLog* m_log = nullptr;
    std::function<void()> m_changed;

    std::int32_t m_frameWidth = 0;
    std::int32_t m_frameHeight = 0;
    std::array<GraphLabelView, kGraphLabelCount> m_labels;
    PixelRect m_picture;
    GraphGrid m_grid;
    GraphCurves m_curves;
};

} // namespace tvx
