#include "host/report/ClassFacts.h"

#include "host/base/Text.h"

namespace zelto::host {

Json ToJson(const std::vector<ClassFacts>& classes) {
    Json json = Json::array();
    for (const ClassFacts& c : classes)
        json.push_back({{"value", JsonNumber(c.value)}, {"color", c.color}, {"name", c.name}});
    return json;
}

TableContent ClassTableOf(const std::vector<ClassFacts>& classes) {
    TableContent table{{"value", "red", "green", "blue", "name"}, {}};
    for (const ClassFacts& c : classes)
        table.rows.push_back({FormatNumber(c.value), std::to_string(c.color[0]),
                              std::to_string(c.color[1]), std::to_string(c.color[2]), c.name});
    return table;
}

void PrintClasses(const std::vector<ClassFacts>& classes, int indent) {
    Table(ClassTableOf(classes)).Print(indent);
}

} // namespace zelto::host
