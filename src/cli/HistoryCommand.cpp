#include "HistoryCommand.h"

#include "LiveJson.h"

#include "base/Errors.h"
#include "base/Utf8Path.h"
#include "measurement/SessionHistory.h"

#include <ostream>

namespace tvx::cli {

int runHistory(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.size() != 2 || args[0] != "--save-folder") {
        err << "usage: tallivex-cli history --save-folder DIR\n";
        return 1;
    }
    const std::filesystem::path path = historyFilePath(utf8Path(args[1]));
    try {
        for (const HistoryRow& row : loadHistory(path))
            out << historyJsonLine(row) << '\n';
    } catch (const RuntimeError& error) {
        err << "tallivex-cli history: cannot read the history " << error.what() << '\n';
        return 2;
    }
    out.flush();
    return 0;
}

} // namespace tvx::cli
