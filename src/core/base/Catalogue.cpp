#include "base/Catalogue.h"

#include <optional>

namespace tvx {
namespace {

// The text of a quoted PO string ("a\"b\n"), or nothing when it is not one.
std::optional<std::string> unquote(std::string_view line)
{
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
        line.remove_suffix(1);
    if (line.size() < 2 || line.front() != '"' || line.back() != '"')
        return std::nullopt;
    std::string text;
    for (std::size_t i = 1; i + 1 < line.size(); ++i) {
        char c = line[i];
        if (c == '"')
            return std::nullopt;
        if (c == '\\') {
            if (++i + 1 >= line.size())
                return std::nullopt;
            switch (line[i]) {
            case 'n': c = '\n'; break;
            case 't': c = '\t'; break;
            case '"': c = '"'; break;
            case '\\': c = '\\'; break;
            default: return std::nullopt;
            }
        }
        text += c;
    }
    return text;
}

struct Entry {
    std::string id;
    std::string str;
    bool context = false;
    bool hasId = false;
    bool fuzzy = false;
    bool plural = false;

    void addTo(Catalogue& catalogue) const
    {
        if (!id.empty() && !str.empty() && !fuzzy && !plural)
            catalogue[id] = str;
    }
};

} // namespace

Catalogue parsePo(std::string_view text, std::string* error)
{
    Catalogue catalogue;
    Entry entry;
    std::string ignored;
    std::string* filling = nullptr;
    const auto next = [&] {
        entry.addTo(catalogue);
        entry = Entry{};
        filling = nullptr;
    };
    std::size_t lineNumber = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (++lineNumber == 1 && line.starts_with("\xEF\xBB\xBF"))
            line.remove_prefix(3);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.empty() || line.starts_with("#~"))
            continue;
        if (line.front() == '#') {
            if (line.starts_with("#,") && line.find("fuzzy") != std::string_view::npos) {
                if (entry.hasId || entry.context)
                    next();
                entry.fuzzy = true;
            }
            continue;
        }
        const std::size_t space = line.find_first_of(" \t");
        const std::string_view keyword = line.front() == '"' ? std::string_view{} : line.substr(0, space);
        std::string_view value = line.front() == '"' || space == std::string_view::npos ? line : line.substr(space + 1);
        while (!value.empty() && (value.front() == ' ' || value.front() == '\t'))
            value.remove_prefix(1);
        std::string* target = nullptr;
        if (keyword == "msgctxt") {
            if (entry.hasId || entry.context)
                next();
            entry.context = true;
            target = &ignored;
        } else if (keyword == "msgid") {
            if (entry.hasId)
                next();
            entry.hasId = true;
            target = &entry.id;
        } else if (keyword == "msgid_plural" || keyword.starts_with("msgstr[")) {
            entry.plural = true;
            target = &ignored;
        } else if (keyword == "msgstr") {
            target = &entry.str;
        } else if (keyword.empty() && filling != nullptr) {
            target = filling;
        }
        const std::optional<std::string> piece = target != nullptr ? unquote(value) : std::nullopt;
        if (!piece) {
            if (error != nullptr)
                *error = "line " + std::to_string(lineNumber) + " is not a PO line: " + std::string(line.substr(0, 60));
            entry.addTo(catalogue);
            return catalogue;
        }
        if (target == &ignored && target != filling)
            ignored.clear();
        *target += *piece;
        filling = target;
    }
    entry.addTo(catalogue);
    return catalogue;
}

} // namespace tvx
