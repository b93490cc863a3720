#include "FormDirectX.h"

#include "meter/Meter.h"
#include "ports/Prompter.h"
#include "ports/Waiter.h"
#include "shell/DebugLog.h"

#include <QSocketNotifier>

namespace tvx::ui {

namespace {

void writeLog(DebugLog& log, std::string_view line)
{
    try {
        log.WriteDebugLog(line);
    } catch (const RuntimeError&) {
    }
}

} // namespace

FormDirectX::FormDirectX(Meter& meter, MouseButtonSource& source, DebugLog& log, Prompter& prompter, QObject* parent)
    : QObject(parent), m_meter(meter), m_source(source), m_log(log), m_prompter(prompter)
{
    setObjectName(QStringLiteral("FormDirectX"));
}

FormDirectX::~FormDirectX()
{
    if (m_loaded)
        m_source.stop();
}

bool FormDirectX::Form_Load()
{
    if (m_loaded)
        return true;
    writeLog(m_log, "DirectX Loding ･･･ ");
    const auto result = m_source.start([this](const std::vector<MouseButtonEvent>& batch) { m_meter.mouseButtons(batch); });
    if (result == MouseButtonSource::StartResult::NoInputSystem) {
        writeLog(m_log, "It was mistake to Create DirectInput Object ");
        m_prompter.message("DirectInputオブジェクトが生成できません。", "マウスジェスチャ");
        return false;
    }
    if (result == MouseButtonSource::StartResult::NoMouseDevice) {
        writeLog(m_log, "It was mistake to Create DirectInputDevice Object ");
        m_prompter.message("Mouse用DirectInputDeviceオブジェクトが生成できません。", "マウスジェスチャ");
        return false;
    }
    if (const int descriptor = m_source.pollDescriptor(); descriptor >= 0) {
        m_notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
        connect(m_notifier, &QSocketNotifier::activated, this, [this] { m_source.poll(); });
    }
    m_loaded = true;
    writeLog(m_log, "Mouse Events Acquire ･･･ Successfull ");
    return true;
}

void FormDirectX::Form_Unload()
{
    if (!m_loaded)
        return;
    writeLog(m_log, "Mouse Events UnAcquire ");
    delete m_notifier;
    m_notifier = nullptr;
    m_source.stop();
    m_loaded = false;
    m_meter.waiter().WaitMs(50);
    writeLog(m_log, "DirectX UnLoding ･･･ End ");
}

} // namespace tvx::ui
