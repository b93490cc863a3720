#include "base/Catalogue.h"

#include <optional>

namespace tvx {
namespace {

// The number of up to `most` digits of `base` at `at` inside `body`, moving `at` past them.
std::optional<char> escapedNumber(std::string_view body, std::size_t& at, unsigned base, std::size_t most)
{
    unsigned value = 0;
    std::size_t used = 0;
    for (; used < most && at < body.size(); ++used, ++at) {
        const char d = body[at];
        const unsigned v = d >= '0' && d <= '9' ? static_cast<unsigned>(d - '0')
                           : d >= 'a' && d <= 'f' ? static_cast<unsigned>(d - 'a' + 10)
                           : d >= 'A' && d <= 'F' ? static_cast<unsigned>(d - 'A' + 10)
                                                  : base;
        if (v >= base)
            break;
        value = value * base + v;
    }
    if (used == 0 || value > 255)
        return std::nullopt;
    return static_cast<char>(value);
}

// The character a C escape stands for, the backslash at `at`; `at` moves past it.
std::optional<char> escaped(std::string_view body, std::size_t& at)
{
    if (++at >= body.size())
        return std::nullopt;
    constexpr std::string_view kFrom = "ntrbfva\"\\'?";
    constexpr std::string_view kTo = "\n\t\r\b\f\v\a\"\\'?";
    if (const std::size_t simple = kFrom.find(body[at]); simple != std::string_view::npos) {
        ++at;
        return kTo[simple];
    }
    if (body[at] == 'x')
        return escapedNumber(body, ++at, 16, 2);
    return escapedNumber(body, at, 8, 3);
}

// The text of a quoted PO string ("a\"b\n"), or nothing when it is not one.
std::optional<std::string> unquote(std::string_view line)
{
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
        line.remove_suffix(1);
    if (line.size() < 2 || line.front() != '"' || line.back() != '"')
        return std::nullopt;
    const std::string_view body = line.substr(1, line.size() - 2);
    std::string text;
    for (std::size_t at = 0; at < body.size();) {
        if (body[at] == '"')
            return std::nullopt;
        if (body[at] != '\\') {
            text += body[at++];
            continue;
        }
        const std::optional<char> c = escaped(body, at);
        if (!c)
            return std::nullopt;
        text += *c;
    }
    return text;
}

struct Entry {
    std::string context;
    std::string id;
    std::string str;
    bool hasContext = false;
    bool hasId = false;
    bool fuzzy = false;
    bool plural = false;

    void addTo(Catalogue& catalogue) const
    {
        if (!id.empty() && !str.empty() && !fuzzy && !plural)
            catalogue[hasContext ? context + '\x04' + id : id] = str;
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
                if (entry.hasId || entry.hasContext)
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
            if (entry.hasId || entry.hasContext)
                next();
            entry.hasContext = true;
            target = &entry.context;
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
