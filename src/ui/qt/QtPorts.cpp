#include "QtPorts.h"

#include "QtText.h"

#include "base/Utf8Path.h"

#include <QApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QTimer>
#include <QUrl>

namespace tvx::ui {

void QtWaiter::WaitMs(std::int32_t ms)
{
    if (ms < 1)
        ms = 1;
    QElapsedTimer clock;
    clock.start();
    const std::uint64_t endings = m_endings;
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    m_loops.push_back(&loop);
    loop.exec();
    m_loops.pop_back();
    // A nested quit can end the loop early; finish the wait without blocking events.
    while (clock.elapsed() < ms && endings == m_endings)
        QCoreApplication::processEvents(QEventLoop::AllEvents, static_cast<int>(ms - clock.elapsed()));
}

void QtWaiter::endWaits()
{
    ++m_endings;
    for (QEventLoop* loop : m_loops)
        loop->quit();
}

bool QtShellLauncher::fileExists(const std::string& path)
{
    return QFileInfo::exists(qtText(path));
}

bool QtShellLauncher::open(const std::string& fileOrUrl)
{
    const QString target = qtText(fileOrUrl);
    const QUrl url = target.contains(QStringLiteral("://")) ? QUrl(target) : QUrl::fromLocalFile(target);
    return QDesktopServices::openUrl(url);
}

void QtShellLauncher::setBusyCursor(bool busy)
{
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

QImage toQImage(const Frame& frame)
{
    QImage image(frame.width(), frame.height(), QImage::Format_RGB888);
    for (std::int32_t y = 0; y < frame.height(); ++y) {
        const std::uint8_t* source = frame.row(y);
        uchar* target = image.scanLine(y);
        for (std::int32_t x = 0; x < frame.width(); ++x) {
            target[3 * x] = source[3 * x + 2];
            target[3 * x + 1] = source[3 * x + 1];
            target[3 * x + 2] = source[3 * x];
        }
    }
    return image;
}

namespace {

bool save(const Frame& frame, const std::filesystem::path& path, const char* format, int quality)
{
    return toQImage(frame).save(qtText(pathUtf8(path)), format, quality);
}

} // namespace

bool QtImageEncoder::writePng(const Frame& image, const std::filesystem::path& path)
{
    return save(image, path, "PNG", -1);
}

bool QtImageEncoder::writeJpeg(const Frame& image, const std::filesystem::path& path, int quality)
{
    return save(image, path, "JPEG", quality);
}

} // namespace tvx::ui
