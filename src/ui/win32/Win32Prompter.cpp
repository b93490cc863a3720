#include "Win32Prompter.h"

#include "DialogSupport.h"
#include "FormInputCheck.h"

namespace tvx::win32ui {
namespace {

int ask(HWND owner, std::string_view text, std::string_view title, UINT kind)
{
    return MessageBoxW(owner, wide(text).c_str(), wide(title).c_str(), kind | MB_SETFOREGROUND);
}

} // namespace

void showMessageBox(HWND owner, std::string_view text, std::string_view title)
{
    ask(owner, text, title, MB_OK | MB_ICONINFORMATION);
}

Win32Prompter::Win32Prompter(HWND owner) : m_owner(owner) {}

Win32Prompter::~Win32Prompter() = default;

HWND Win32Prompter::asker() const
{
    const HWND active = GetActiveWindow();
    return active && IsWindowEnabled(active) ? active : m_owner;
}

void Win32Prompter::message(const std::string& text, const std::string& title)
{
    showMessageBox(asker(), text, title);
}

bool Win32Prompter::askYesNo(const std::string& text, const std::string& title)
{
    return ask(asker(), text, title, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

bool Win32Prompter::askOkCancel(const std::string& text, const std::string& title)
{
    return ask(asker(), text, title, MB_OKCANCEL | MB_ICONQUESTION) == IDOK;
}

double Win32Prompter::askNumber(const std::string& limitA, const std::string& limitB, double proposed,
                                const std::string& step, const std::string& prompt, const std::string& title)
{
    if (!m_input)
        m_input = std::make_unique<FormInputCheck>();
    return m_input->InputCheck(asker(), limitA, limitB, proposed, step, prompt, title);
}

} // namespace tvx::win32ui
