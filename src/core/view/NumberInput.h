#pragma once

#include "base/Language.h"

#include <optional>
#include <string>
#include <string_view>

namespace tvx {

// The bounded number input, toolkit-free: one question's limits, step and typed text, and
// what every key and button does with them. The Qt and Win32 dialogs draw it and forward
// their events; cancel and close answer 19999, so that value cannot be entered.
class NumberInput {
public:
    static constexpr double kCancelled = 19999;

    // Captions in Japanese, shown through tr().
    static constexpr std::string_view kDefaultTitle = N_("パラメータ入力");
    static constexpr std::string_view kGuide = N_("インプットガイド");
    static constexpr std::string_view kEnterCaption = N_("決 定");
    static constexpr std::string_view kCancelCaption = N_("キャンセル");
    static constexpr std::string_view kMaxCaption = N_("最大：");
    static constexpr std::string_view kMinCaption = N_("最小：");

    // A refusal shown in a message box; the dialog stays open.
    struct Warning {
        std::string text;
        std::string title;
        bool focusInput = false; // give the focus back to the entry field

        friend bool operator==(const Warning&, const Warning&) = default;
    };

    // What a typed character does in the entry field.
    enum class Key { Pass, Drop, FocusEnter };
    // Where the focus is when Enter is pressed, and what Enter then does.
    enum class Focus { Input, EnterButton, CancelButton, StepButton };
    enum class EnterAction { FocusEnter, Confirm, Cancel };

    // Limits in either order and the step may be numbers or numeric texts; an empty
    // title gives "パラメータ入力" in the player's language.
    void open(std::string_view limitA, std::string_view limitB, double proposed, std::string_view step,
              std::string prompt, std::string_view title);

    double lower() const { return m_lower; }
    double upper() const { return m_upper; }
    double step() const { return m_step; }
    std::string lowerText() const;
    std::string upperText() const;
    const std::string& prompt() const { return m_prompt; }
    const std::string& title() const { return m_title; }

    // The entry field's text: the dialog writes what the player typed, reads what the
    // buttons made of it.
    const std::string& text() const { return m_text; }
    void setText(std::string text) { m_text = std::move(text); }

    static Key filterKey(char32_t typed);
    static EnterAction enterAction(Focus focus);

    // Step the value within the limits; a warning when the text holds a refused character.
    std::optional<Warning> increment();
    std::optional<Warning> decrement();
    // On success the dialog is done with the value; otherwise the warning to show.
    std::optional<Warning> confirm();
    void cancel();

    bool done() const { return m_done; }
    double result() const { return m_result; }

private:
    double m_lower = 0;
    double m_upper = 0;
    double m_step = 1;
    std::string m_prompt;
    std::string m_title{tr(kDefaultTitle)};
    std::string m_text;
    double m_result = kCancelled;
    bool m_done = false;
};

// The numeric value of a text as the dialog reads it: blanks ignored, the longest leading
// number taken (so "1E3" is 1000 and "12x" is 12), 0 when there is none.
double numericValue(std::string_view text);

// The textual character check: each character's code in decimal is compared as a text
// with "32", "45", "46", "69", "101" and the range "48".."57". True when all pass.
bool passesCharacterCheck(std::string_view utf8);

// How the dialogs write a number: integers without a fraction or exponent.
std::string formatInputNumber(double value);

} // namespace tvx
