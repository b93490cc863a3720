#pragma once

#include <QWidget>

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QLabel;
class QMenu;
class QToolButton;

namespace tvx {
struct LiveView;
struct Settings;
} // namespace tvx

namespace tvx::ui {

class CompactMark;

// The compact window: the level, the state of the readings and a few rates in a small
// frameless window that stays over the game. It is dragged anywhere to move it, and its
// context menu sets its opacity or closes it. Its place, opacity and whether it is open
// live in the settings; `remember` saves them whenever the player changes one.
class FormCompact : public QWidget {
    Q_OBJECT

public:
    FormCompact(Settings& settings, std::function<void()> remember, QWidget* parent = nullptr);

    // Draws the view's texts; the window grows or shrinks with its lines.
    void showView(const LiveView& view);
    // Opens at its remembered place and opacity, and remembers that it is open.
    void open();
    // The settings were loaded or reset: the window takes their place and opacity, and
    // hides when they say it is closed.
    void followSettings();
    // The title and tool tip in the current language; the lines follow the next showView.
    void retranslate();
    // The context menu, made anew for each showing.
    QMenu* makeMenu();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setLineCount(std::size_t count);
    void place();
    void setOpacity(int percent);
    void rememberPlace();

    Settings& m_settings;
    std::function<void()> m_remember;
    CompactMark* m_shpState = nullptr;
    QLabel* m_lblState = nullptr;
    QLabel* m_lblLevel = nullptr;
    QToolButton* m_cmdClose = nullptr;
    std::vector<std::pair<QLabel*, QLabel*>> m_lines;
    std::optional<QPoint> m_grip; // where the window was taken, while it is dragged
    bool m_dragged = false;
};

} // namespace tvx::ui
