#pragma once

#include <QImage>
#include <QWidget>

namespace tvx {
class RegionPicker;
}

namespace tvx::ui {

// The capture of the whole screen, enlarged by the picker's zoom, with the three regions
// drawn over it. Dragging sets the selected region; arrow keys move it by one pixel.
class ScreenPicture : public QWidget {
    Q_OBJECT

public:
    ScreenPicture(RegionPicker& picker, QWidget* parent = nullptr);

    // The picker's screen or zoom changed.
    void refresh();
    QSize sizeHint() const override;

signals:
    void regionMoved(int region);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void moved(bool changed);

    RegionPicker& m_picker;
    QImage m_image;
};

} // namespace tvx::ui
