#pragma once

#include "config/Settings.h"
#include "ports/Prompter.h"

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace tvx::cli {

// How a command answers the questions that loading a configuration may ask.
struct CliAnswers {
    bool yes = true;                            // migration and target-change questions
    ScreenMode screen = ScreenMode::FullScreen; // the full-screen/window question pair
};

// Takes --yes, --no, --fullscreen or --window into `answers`; false for anything else.
bool parseCliAnswer(const std::string& arg, CliAnswers& answers);

// Answers every question from CliAnswers and echoes questions and messages on `err`.
class CliPrompter final : public Prompter {
public:
    CliPrompter(const CliAnswers& answers, std::ostream& err) : m_answers(answers), m_err(err) {}

    void message(const std::string& text, const std::string& title) override;
    bool askYesNo(const std::string& text, const std::string& title) override;
    bool askOkCancel(const std::string& text, const std::string& title) override;
    double askNumber(const std::string& limitA, const std::string& limitB, double proposed, const std::string& step,
                     const std::string& prompt, const std::string& title) override;

    // The configuration file could not be written.
    bool writeFailed() const { return m_writeFailed; }

private:
    CliAnswers m_answers;
    std::ostream& m_err;
    bool m_writeFailed = false;
};

// Loads homeDir's configuration as the program does at start-up: the file may be created,
// repaired, migrated or rewritten, and log lines go to homeDir's debug log. Questions are
// answered from `answers` and echoed on `err` with every message. writeFailed, when given,
// tells whether the file had to be written and could not be.
Settings loadCliSettings(const std::filesystem::path& homeDir, const CliAnswers& answers, std::ostream& err,
                         bool* writeFailed = nullptr);

// The home folder given with --home, or the default one, made when missing. nullopt, with a
// line on err naming it, when it is a file or cannot be made.
std::optional<std::filesystem::path> cliHomeFolder(const std::optional<std::filesystem::path>& home, std::ostream& err);

} // namespace tvx::cli
