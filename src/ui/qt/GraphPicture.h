#pragma once

// moc cannot parse the standard library's C++20 headers; it needs none of these types.
#ifndef Q_MOC_RUN
#include "graph/GraphPlot.h"
#endif

#include <QWidget>

namespace tvx::ui {

// picGraph: the drawing surface of the graph. It paints the grid lines linGraphX(0..4)
// and linGraphY(0..8) under the curves it was last given, in its own pixels.
class GraphPicture : public QWidget {
    Q_OBJECT

public:
    explicit GraphPicture(QWidget* parent = nullptr);

    // What to paint; the picture keeps its own copy.
    void setDrawing(const GraphGrid& grid, const GraphCurves& curves);
    const GraphGrid& grid() const { return m_grid; }
    const GraphCurves& curves() const { return m_curves; }

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    GraphGrid m_grid;
    GraphCurves m_curves;
    bool m_pressed = false;
};

} // namespace tvx::ui
