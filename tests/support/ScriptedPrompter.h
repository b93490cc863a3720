#pragma once

#include "ports/Prompter.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace tvx::test {

// Answers questions from a script and records everything shown; an unexpected question fails the test.
class ScriptedPrompter : public Prompter {
public:
    struct Shown {
        std::string kind; // "message", "yesno", "okcancel", "number"
        std::string text;
        std::string title;
    };

    // Yes/No and OK/Cancel answers, in the order the questions come.
    std::deque<bool> answers;
    std::deque<double> numbers;
    std::vector<Shown> shown;

    void message(const std::string& text, const std::string& title) override
    {
        shown.push_back({"message", text, title});
    }
    bool askYesNo(const std::string& text, const std::string& title) override
    {
        return ask("yesno", text, title, answers, true);
    }
    bool askOkCancel(const std::string& text, const std::string& title) override
    {
        return ask("okcancel", text, title, answers, true);
    }
    double askNumber(const std::string& limitA, const std::string& limitB, double, const std::string&,
                     const std::string& prompt, const std::string& title) override
    {
        return ask("number", prompt + " [" + limitA + ", " + limitB + "]", title, numbers, kCancelled);
    }

    std::vector<std::string> kinds() const
    {
        std::vector<std::string> result;
        for (const Shown& s : shown)
            result.push_back(s.kind);
        return result;
    }

private:
    template <typename T>
    T ask(const char* kind, const std::string& text, const std::string& title, std::deque<T>& script, T unexpected)
    {
        shown.push_back({kind, text, title});
        if (script.empty()) {
            ADD_FAILURE() << "unexpected question: " << text;
            return unexpected;
        }
        const T answer = script.front();
        script.pop_front();
        return answer;
    }
};

} // namespace tvx::test
