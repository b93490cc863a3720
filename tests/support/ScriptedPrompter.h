#pragma once

#include "ports/Prompter.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace tvx::test {

// Answers the program's questions from a script and records everything it was shown.
// A question the script does not expect fails the test.
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
        shown.push_back({"yesno", text, title});
        return nextAnswer();
    }
    bool askOkCancel(const std::string& text, const std::string& title) override
    {
        shown.push_back({"okcancel", text, title});
        return nextAnswer();
    }
    double askNumber(const std::string& limitA, const std::string& limitB, double, const std::string&,
                     const std::string& prompt, const std::string& title) override
    {
        shown.push_back({"number", prompt + " [" + limitA + ", " + limitB + "]", title});
        if (numbers.empty()) {
            ADD_FAILURE() << "unexpected number input: " << prompt;
            return kCancelled;
        }
        const double value = numbers.front();
        numbers.pop_front();
        return value;
    }

    std::vector<std::string> kinds() const
    {
        std::vector<std::string> result;
        for (const Shown& s : shown)
            result.push_back(s.kind);
        return result;
    }

private:
    bool nextAnswer()
    {
        if (answers.empty()) {
            ADD_FAILURE() << "unexpected question: " << shown.back().text;
            return true;
        }
        const bool answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

} // namespace tvx::test
