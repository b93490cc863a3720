#pragma once

#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tvx::test {

inline const LocalDateTime kStart{2009, 4, 1, 13, 5, 0};

// The whole engine over the fake machine, with its own save folder and debug log.
class MeterFixture : public testing::Test {
protected:
    MeterFixture() { restart(); }

    // A fresh machine and engine over the same folder and log, the settings as at first.
    void restart()
    {
        m_meter.reset();
        machine = FakeMachine{};
        machine.clock.setNow(kStart);
        settings = defaultSettings(pathUtf8(temp.path()));
        settings.StartDelay = 0;
    }

    Meter& meter()
    {
        if (!m_meter) {
            MeterPorts ports{machine.clock, machine, machine, machine, machine, machine, machine, machine, &machine};
            m_meter = std::make_unique<Meter>(settings, ports, log);
            m_meter->state().graph = std::make_unique<clsGraphBuffer>(machine.clock);
        }
        return *m_meter;
    }

    void at(std::int64_t seconds)
    {
        machine.clock.setNow(addSeconds(kStart, seconds));
        machine.clock.setTickMs(static_cast<std::uint32_t>(seconds * 1000));
    }

    void show(const std::string& level, const std::string& exp, const std::string& money)
    {
        machine.screens = {gameCapture({level, exp, money})};
    }

    // One cycle at a second of the session with these numbers on the screen.
    void cycle(std::int64_t seconds, const std::string& level, const std::string& exp, const std::string& money)
    {
        at(seconds);
        show(level, exp, money);
        meter().cycle().runCycle();
    }

    std::string debugText() { return readAll(log.path()); }

    TempFolder temp;
    FakeMachine machine;
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};

private:
    std::unique_ptr<Meter> m_meter;
};

} // namespace tvx::test
