#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace tvx::test {

// The fields of a CSV record line, blanks trimmed.
inline std::vector<std::string> csvFields(const std::string& line)
{
    std::vector<std::string> fields;
    std::stringstream in(line);
    for (std::string field; std::getline(in, field, ',');) {
        field.erase(0, field.find_first_not_of(' '));
        field.erase(field.find_last_not_of(' ') + 1);
        fields.push_back(field);
    }
    return fields;
}

} // namespace tvx::test
