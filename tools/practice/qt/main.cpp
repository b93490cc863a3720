// tallivex-practice: a stand-in game window that shows the meter at work without the game.
#include "PracticeOptions.h"
#include "PracticeWindow.h"

#include <QApplication>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

int main(int argc, char* argv[])
{
    // --help has to work without a display.
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::fputs(tvx::practice::kPracticeUsage, stdout);
            return 0;
        }
    }

    QApplication app(argc, argv);
    std::vector<std::string> args;
    const QStringList arguments = QApplication::arguments();
    for (qsizetype i = 1; i < arguments.size(); ++i)
        args.push_back(arguments.at(i).toStdString());

    tvx::practice::PracticeOptions options;
    std::string error;
    if (!tvx::practice::parsePracticeOptions(args, options, error)) {
        std::fprintf(stderr, "tallivex-practice: %s\n%s", error.c_str(), tvx::practice::kPracticeUsage);
        return 2;
    }

    tvx::practice::PracticeWindow window(options);
    window.show();
    window.activateWindow();
    return QApplication::exec();
}
