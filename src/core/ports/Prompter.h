#pragma once

#include <string>

namespace tvx {

// Port: the modal questions and messages of the program. Texts of several lines are
// joined by CR LF.
class Prompter {
public:
    // What the bounded number input returns when the player cancels or closes it.
    static constexpr double kCancelled = 19999;

    virtual ~Prompter() = default;
    virtual void message(const std::string& text, const std::string& title) = 0;
    // true for Yes.
    virtual bool askYesNo(const std::string& text, const std::string& title) = 0;
    // true for OK.
    virtual bool askOkCancel(const std::string& text, const std::string& title) = 0;
    // The bounded number input: limits in either order, the proposed value, the step of
    // the up and down buttons. kCancelled on cancel or close.
    virtual double askNumber(const std::string& limitA, const std::string& limitB, double proposed,
                             const std::string& step, const std::string& prompt, const std::string& title) = 0;
};

} // namespace tvx
