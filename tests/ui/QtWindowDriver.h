#pragma once

#include "support/WindowDriver.h"

#include "GlyphView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

namespace tvx::test {

// The texts of a window's shown controls that do not fit them.
std::vector<std::string> clippedTexts(QWidget* window);

// A Qt window, found afresh for every call, and its children by object name.
class QtWindowDriver final : public WindowDriver {
public:
    explicit QtWindowDriver(std::function<QWidget*()> window) : m_window(std::move(window)) {}

    bool isOpen() override { return m_window() != nullptr && m_window()->isVisible(); }
    std::string title() override { return m_window()->windowTitle().toStdString(); }
    bool has(const std::string& name) override { return m_window() && find(name); }
    std::string text(const std::string& name) override
    {
        QWidget* widget = control(name);
        if (const auto* label = qobject_cast<QLabel*>(widget))
            return label->text().toStdString();
        if (const auto* button = qobject_cast<QAbstractButton*>(widget))
            return button->text().toStdString();
        if (const auto* edit = qobject_cast<QLineEdit*>(widget))
            return edit->text().toStdString();
        if (const auto* combo = qobject_cast<QComboBox*>(widget))
            return combo->currentText().toStdString();
        return {};
    }
    bool enabled(const std::string& name) override { return control(name) && control(name)->isEnabled(); }
    // The window's own focus: offscreen, a window may stay inactive after a message box.
    bool focused(const std::string& name) override
    {
        return m_window() && m_window()->focusWidget() && m_window()->focusWidget() == find(name);
    }
    void focus(const std::string& name) override { control(name)->setFocus(); }
    void click(const std::string& name) override
    {
        QMetaObject::invokeMethod(qobject_cast<QAbstractButton*>(control(name)), "click", Qt::QueuedConnection);
    }
    void clickNow(const std::string& name) override { qobject_cast<QAbstractButton*>(control(name))->click(); }
    void type(const std::string& name, const std::string& text) override
    {
        QTest::keyClicks(control(name), QString::fromStdString(text));
    }
    void setText(const std::string& name, const std::string& text) override
    {
        qobject_cast<QLineEdit*>(control(name))->setText(QString::fromStdString(text));
    }
    void press(Key key) override
    {
        QWidget* target = m_window()->focusWidget() ? m_window()->focusWidget() : m_window();
        QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyPress, code(key), Qt::NoModifier));
        QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyRelease, code(key), Qt::NoModifier));
    }
    void key(const std::string& name, Key key) override { QTest::keyClick(control(name), code(key)); }
    void choose(const std::string& name, int index) override
    {
        if (auto* combo = qobject_cast<QComboBox*>(control(name)))
            combo->setCurrentIndex(index);
        else if (auto* tabs = qobject_cast<QTabWidget*>(control(name)))
            tabs->setCurrentIndex(index);
    }
    std::vector<std::uint16_t> glyph(const std::string& name) override { return glyphView(name)->columns(); }
    void clickCell(const std::string& name, int column, int row) override
    {
        ui::GlyphView* view = glyphView(name);
        QTest::mouseClick(view, Qt::LeftButton, {}, view->pixelCentre(column, row));
    }
    void drag(const std::string& name, Point from, Point to) override
    {
        QWidget* widget = control(name);
        QTest::mousePress(widget, Qt::LeftButton, {}, QPoint(from.x, from.y));
        const QPointF half((from.x + to.x) / 2.0, (from.y + to.y) / 2.0);
        QMouseEvent move(QEvent::MouseMove, half, widget->mapToGlobal(half), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(widget, &move);
        QTest::mouseRelease(widget, Qt::LeftButton, {}, QPoint(to.x, to.y));
    }
    Frame picture(const std::string& name) override
    {
        const QImage image = (name.empty() ? m_window() : control(name))->grab().toImage().convertToFormat(
            QImage::Format_BGR888);
        Frame frame(image.width(), image.height());
        for (int y = 0; y < image.height(); ++y)
            std::memcpy(frame.row(y), image.constScanLine(y), frame.rowBytes());
        return frame;
    }
    Box frame() override
    {
        const QRect r = m_window()->frameGeometry();
        return {r.x(), r.y(), r.width(), r.height()};
    }
    void close() override { QMetaObject::invokeMethod(m_window(), "close", Qt::QueuedConnection); }
    bool fits(const std::string& name) override
    {
        const QWidget* widget = control(name);
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            const QRect room = label->contentsRect();
            const QRect needed = label->fontMetrics().boundingRect(room, Qt::TextWordWrap, label->text());
            return needed.height() <= room.height() && needed.width() <= room.width();
        }
        return widget->sizeHint().width() <= widget->width();
    }

    std::vector<std::string> clipped() override { return clippedTexts(m_window()); }

    QWidget* control(const std::string& name)
    {
        QWidget* found = m_window() ? find(name) : nullptr;
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

private:
    static Qt::Key code(Key key)
    {
        return key == Key::Enter ? Qt::Key_Return : key == Key::Escape ? Qt::Key_Escape : Qt::Key_Right;
    }
    QWidget* find(const std::string& name) { return m_window()->findChild<QWidget*>(QString::fromStdString(name)); }
    ui::GlyphView* glyphView(const std::string& name) { return qobject_cast<ui::GlyphView*>(control(name)); }

    std::function<QWidget*()> m_window;
};

// Runs `modal` while the steps play from a timer in its loop.
void playWhile(std::deque<PlayerStep> steps, const std::function<void()>& modal);

} // namespace tvx::test
