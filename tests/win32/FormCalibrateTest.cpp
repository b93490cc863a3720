#include "DialogScript.h"
#include "FormCalibrate.h"
#include "FormOption.h"
#include "Win32Prompter.h"
#include "Win32Ui.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "ports/ScreenSource.h"
#include "ports/Waiter.h"
#include "support/BitmapFont.h"
#include "support/ScriptedScreen.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tvx::win32ui {
namespace {

using test::DialogScript;
using test::textOf;
using test::typeInto;

using test::fontCapture;
using test::InstantWaiter;
using test::ScriptedScreen;

// The first control with this identifier under a shown top-level window with this title.
HWND controlOf(const wchar_t* title, int id)
{
    struct Search {
        const wchar_t* title;
        int id;
        HWND found;
    } search{title, id, nullptr};
    EnumWindows(
        [](HWND window, LPARAM into) -> BOOL {
            auto* s = reinterpret_cast<Search*>(into);
            if (IsWindowVisible(window) && textOf(window) == s->title)
                s->found = test::childWithId(window, s->id);
            return s->found == nullptr;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND calibrate(const std::string& name)
{
    return controlOf(L"画面から学習", calibrateControlId(name));
}

HWND calibrateIndexed(const char* name, int index)
{
    return calibrate(name + std::to_string(index));
}

std::wstring textOf(const std::string& name)
{
    return test::textOf(calibrate(name));
}

// A click as the dialog sees it, handled before the step goes on.
void press(const std::string& name)
{
    SendMessageW(calibrate(name), BM_CLICK, 0, 0);
}

void type(int region, const std::string& number)
{
    SetWindowTextW(calibrateIndexed("txtNumber", region), wide(number).c_str());
}

bool contains(const std::wstring& text, const std::string& part)
{
    return text.find(wide(part)) != std::wstring::npos;
}

const std::vector<std::array<std::string, kRegionCount>> kScreens{
    {"58", "1234567", "90,210"}, {"247", "8890123", "5,006,400"}, {"203", "4455667", "-"}, {"96", "-", "-"}};

class FormCalibrateWin32Test : public testing::Test {
protected:
    // Runs the window over the script; true when the player confirmed.
    bool show(const CaptureBitmap* screenshot, bool withScreen, std::deque<std::function<bool()>> steps)
    {
        steps.push_front([] { return calibrate("cmdLearn") != nullptr; });
        DialogScript script(std::move(steps), 30000);
        const bool confirmed = ShowFormCalibrate(
            nullptr, {&m_settings, screenshot, withScreen ? &m_screen : nullptr, &m_waiter, nullptr});
        EXPECT_TRUE(script.finished());
        EXPECT_FALSE(script.timedOut());
        return confirmed;
    }

    // Each screen taken with the capture button, its numbers typed and learnt.
    std::function<bool()> captureAndLearn()
    {
        for (std::uint32_t i = 0; i < kScreens.size(); ++i)
            m_screen.screens.push_back(fontCapture(kScreens[i], i + 1));
        return [] {
            for (const auto& numbers : kScreens) {
                press("cmdCapture");
                for (int r = 0; r < kRegionCount; ++r)
                    type(r, numbers[static_cast<std::size_t>(r)]);
                press("cmdLearn");
            }
            return true;
        };
    }

    Settings m_settings = defaultSettings("");
    InstantWaiter m_waiter;
    ScriptedScreen m_screen;
};

TEST_F(FormCalibrateWin32Test, LearnsFromCapturesAndChangesTheSettingsOnlyWhenConfirmed)
{
    const Settings before = m_settings;
    std::wstring noScreen;
    std::wstring firstReading;
    std::wstring level;
    std::wstring levelReading;
    EXPECT_FALSE(show(nullptr, true,
                      {[&] {
                           firstReading = textOf("lblReading0");
                           press("cmdLearn");
                           noScreen = textOf("lblStatus");
                           return true;
                       },
                       captureAndLearn(),
                       [&] {
                           level = textOf("lblMessage0");
                           levelReading = textOf("lblReading0");
                           test::pressKey(VK_ESCAPE);
                           return true;
                       }}));
    EXPECT_EQ(firstReading, L"読み取り： キャプチャ画像がありません");
    EXPECT_EQ(noScreen, L"先に画面を取り込んでください。");
    EXPECT_TRUE(contains(level, "学習しました（文字幅 6 列）")) << utf8(level);
    EXPECT_TRUE(contains(level, "読み返し： 58 → 58、247 → 247、203 → 203、96 → 96")) << utf8(level);
    EXPECT_TRUE(contains(level, "未学習： 1")) << utf8(level);
    EXPECT_EQ(levelReading, L"読み取り： 96"); // the last screen, read with what was learnt
    EXPECT_EQ(m_settings, before);

    std::wstring captured;
    EXPECT_TRUE(show(nullptr, true, {captureAndLearn(), [&] {
                                         captured = textOf("lblStatus");
                                         press("cmdApply");
                                         return true;
                                     }}));
    EXPECT_EQ(captured, L"");
    EXPECT_EQ(m_settings.ReferenceSize[RegionLevel].Width, 6);
    EXPECT_EQ(m_settings.ReferenceSize[RegionMoney].Width, 6);
    EXPECT_EQ(m_settings.PatternStrings[RegionLevel][1], "");
    EXPECT_NE(m_settings.PatternStrings[RegionLevel][9], before.PatternStrings[RegionLevel][9]);
}

TEST_F(FormCalibrateWin32Test, ARefusedNumberIsExplainedAndAFailedCaptureSaysSo)
{
    std::wstring refused;
    std::wstring failed;
    std::wstring typed;
    m_screen.screens.push_back(fontCapture({"58", "", ""}, 1));
    EXPECT_FALSE(show(nullptr, true,
                      {[&] {
                           press("cmdCapture");
                           // Letters never reach the field; the number has digits too many.
                           typeInto(calibrateIndexed("txtNumber", 0), L"5x8 123456");
                           typed = test::textOf(calibrateIndexed("txtNumber", 0));
                           press("cmdLearn");
                           refused = textOf("lblMessage0");
                           press("cmdCapture"); // no screen left to take
                           failed = textOf("lblStatus");
                           press("cmdCancel");
                           return true;
                       }}));
    EXPECT_EQ(typed, L"58 123456");
    EXPECT_TRUE(contains(refused, "8 桁の数字と終わりの記号に分けられません")) << utf8(refused);
    EXPECT_EQ(failed, L"画面を取り込めませんでした。");
}

TEST_F(FormCalibrateWin32Test, DraggingOnTheZoomedScreenSetsTheRegionAndAMovedRegionStartsOver)
{
    // The experience number alone, somewhere else on the screen.
    Frame frame = test::fontScreen({"", "", ""});
    test::paintFontText(frame, {300, 100, 60, 9}, RegionExp, 2, "4096]");
    const CaptureBitmap screen = toCaptureBitmap(frame);
    bool captureEnabled = true;
    std::wstring learnt;
    std::wstring moved;
    std::wstring reading;
    EXPECT_TRUE(show(
        &screen, false,
        {[&] {
             captureEnabled = IsWindowEnabled(calibrate("cmdCapture")) != FALSE;
             press("optRegion1");
             const HWND zoom = calibrate("cboZoom");
             SendMessageW(zoom, CB_SETCURSEL, 1, 0); // 2 times
             SendMessageW(GetParent(zoom), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(zoom), CBN_SELCHANGE),
                          reinterpret_cast<LPARAM>(zoom));
             const HWND picture = calibrate("picScreen");
             const int x = -GetScrollPos(picture, SB_HORZ);
             const int y = -GetScrollPos(picture, SB_VERT);
             SendMessageW(picture, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x + 2 * 300, y + 2 * 100));
             SendMessageW(picture, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x + 2 * 330, y + 2 * 104));
             SendMessageW(picture, WM_LBUTTONUP, 0, MAKELPARAM(x + 2 * 359 + 1, y + 2 * 108 + 1));
             reading = textOf("lblReading1");
             type(1, "4096");
             press("cmdLearn");
             learnt = textOf("lblMessage1");
             SendMessageW(picture, WM_KEYDOWN, VK_RIGHT, 1);
             moved = textOf("lblMessage1");
             if (const char* file = std::getenv("TALLIVEX_SCREENSHOT")) {
                 press("cmdLearn");
                 SendMessageW(zoom, CB_SETCURSEL, 2, 0); // 4 times, the moved region in view
                 SendMessageW(GetParent(zoom), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(zoom), CBN_SELCHANGE),
                              reinterpret_cast<LPARAM>(zoom));
                 test::pump(300);
                 test::saveWindowPicture(GetParent(picture), file);
             }
             press("cmdApply");
             return true;
         }}));
    EXPECT_FALSE(captureEnabled);
    EXPECT_EQ(reading, L"読み取り： 認識できません"); // the built-in templates are wider
    EXPECT_TRUE(contains(learnt, "4096 → 4096")) << utf8(learnt);
    EXPECT_EQ(moved, L"");
    EXPECT_EQ(m_settings.CaptureRegion[RegionExp], (CaptureRegionRect{301, 100, 60, 9}));
    EXPECT_EQ(m_settings.ReferenceSize[RegionExp].Width, 5);
}

TEST(FormCalibrateFromOptionsTest, TheOptionsWindowOpensItAndTakesWhatIsConfirmed)
{
    test::TempFolder home;
    test::FakeClock clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog log{home.path(), clock};
    Win32Prompter prompter;
    const auto codec = platform::makeTextCodec();
    Settings settings = defaultSettings(pathUtf8(home.path()));
    ConfigFile config{settings, home.path(), prompter, *codec, &log};
    int sized = 0;
    config.setSecurePixels([&sized] { ++sized; });
    const CaptureBitmap screen = fontCapture({"", "4096", ""}, 1);
    const auto options = [](const char* name) { return controlOf(L"設定", optionControlId(name)); };
    std::wstring before;
    std::wstring after;
    std::wstring question;
    DialogScript script(
        {[&] {
             if (!options("cmdCalibrate"))
                 return false;
             before = test::textOf(options("lblResult1"));
             PostMessageW(options("cmdCalibrate"), BM_CLICK, 0, 0);
             return true;
         },
         [] {
             if (!calibrate("cmdLearn"))
                 return false;
             type(1, "4,096");
             press("cmdLearn");
             PostMessageW(calibrate("cmdApply"), BM_CLICK, 0, 0);
             return true;
         },
         [&] {
             if (calibrate("cmdLearn"))
                 return false;
             after = test::textOf(options("lblResult1"));
             PostMessageW(options("cmdClose"), BM_CLICK, 0, 0);
             return true;
         },
         [&] {
             // Closing asks about the unsaved result; the file stays as it was.
             HWND box = nullptr;
             while ((box = FindWindowExW(nullptr, box, nullptr, L"設定")) != nullptr)
                 if (IsWindowVisible(box) && !GetDlgItem(box, optionControlId("tabOption")))
                     break;
             if (!box)
                 return false;
             question = test::staticTexts(box);
             PostMessageW(box, WM_COMMAND, IDNO, 0);
             return true;
         }},
        30000);
    OptionsContext context;
    context.config = &config;
    context.lastCapture = &screen;
    context.prompter = &prompter;
    ShowFormOption(nullptr, context);
    EXPECT_TRUE(script.finished());
    EXPECT_EQ(before, L"認識結果： 認識できません　［完全一致］");
    EXPECT_EQ(after, L"認識結果： 4096　［完全一致］");
    EXPECT_EQ(sized, 1);
    EXPECT_FALSE(question.empty());
    EXPECT_EQ(settings.ReferenceSize[RegionExp].Width, 5);
    EXPECT_EQ(settings.PatternStrings[RegionLevel], defaultSettings("").PatternStrings[RegionLevel]);
    const std::string debugLog = test::readAll(log.path());
    EXPECT_NE(debugLog.find("Click : Calibration Learn "), std::string::npos) << debugLog;
    EXPECT_NE(debugLog.find("Click : Calibration Apply "), std::string::npos);
}

} // namespace
} // namespace tvx::win32ui
