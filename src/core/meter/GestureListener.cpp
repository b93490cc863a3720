#include "meter/GestureListener.h"
#include "base/Language.h"

#include "meter/Meter.h"
#include "ports/MouseButtons.h"
#include "ports/Prompter.h"
#include "ports/Waiter.h"
#include "shell/DebugLog.h"

namespace tvx {
namespace {

void writeLog(DebugLog& log, std::string_view line)
{
    try {
        log.WriteDebugLog(line);
    } catch (const RuntimeError&) {
    }
}

} // namespace

GestureListener::GestureListener(Meter& meter, MouseButtonSource& source, DebugLog& log, Prompter& prompter)
    : m_meter(meter), m_source(source), m_log(log), m_prompter(prompter)
{
}

GestureListener::~GestureListener()
{
    if (m_loaded)
        m_source.stop();
}

bool GestureListener::Form_Load()
{
    if (m_loaded)
        return true;
    writeLog(m_log, "DirectX Loding ･･･ ");
    const auto result = m_source.start([this](const std::vector<MouseButtonEvent>& batch) { m_meter.mouseButtons(batch); });
    if (result == MouseButtonSource::StartResult::NoInputSystem) {
        writeLog(m_log, "It was mistake to Create DirectInput Object ");
        m_prompter.message(tr("DirectInputオブジェクトが生成できません。"), tr("マウスジェスチャ"));
        return false;
    }
    if (result == MouseButtonSource::StartResult::NoMouseDevice) {
        writeLog(m_log, "It was mistake to Create DirectInputDevice Object ");
        m_prompter.message(tr("Mouse用DirectInputDeviceオブジェクトが生成できません。"), tr("マウスジェスチャ"));
        return false;
    }
    m_loaded = true;
    if (m_loadedChanged)
        m_loadedChanged(true);
    writeLog(m_log, "Mouse Events Acquire ･･･ Successfull ");
    return true;
}

void GestureListener::Form_Unload()
{
    if (!m_loaded)
        return;
    writeLog(m_log, "Mouse Events UnAcquire ");
    if (m_loadedChanged)
        m_loadedChanged(false);
    m_source.stop();
    m_loaded = false;
    m_meter.waiter().WaitMs(50);
    writeLog(m_log, "DirectX UnLoding ･･･ End ");
}

void GestureListener::followSetting()
{
    Settings& settings = m_meter.settings();
    if (settings.Gesture && !m_loaded) {
        if (!Form_Load())
            settings.Gesture = false;
    } else if (!settings.Gesture && m_loaded) {
        Form_Unload();
    }
}

} // namespace tvx
