// Stand-ins until the options window, the number input and the prompter of the Win32
// front end arrive; this file goes when they do.
#include "FormOption.h"
#include "Win32Prompter.h"
#include "Win32Ui.h"

namespace tvx::win32ui {

void ShowFormOption(HWND owner, const OptionsContext&)
{
    MessageBoxW(owner, L"Options are not available in this build yet.", L"Tallivex", MB_OK | MB_ICONINFORMATION);
}

void Win32Prompter::message(const std::string& text, const std::string& title)
{
    MessageBoxW(m_owner, wide(text).c_str(), wide(title).c_str(), MB_OK);
}

bool Win32Prompter::askYesNo(const std::string& text, const std::string& title)
{
    return MessageBoxW(m_owner, wide(text).c_str(), wide(title).c_str(), MB_YESNO | MB_ICONQUESTION) == IDYES;
}

bool Win32Prompter::askOkCancel(const std::string& text, const std::string& title)
{
    return MessageBoxW(m_owner, wide(text).c_str(), wide(title).c_str(), MB_OKCANCEL) == IDOK;
}

double Win32Prompter::askNumber(const std::string&, const std::string&, double, const std::string&,
                                const std::string&, const std::string&)
{
    return kCancelled;
}

} // namespace tvx::win32ui
