#include "cli/document.h"

#include <nlohmann/json.hpp>

namespace tarnex::cli
{

namespace
{

using Json = nlohmann::ordered_json;

struct ToJson {
    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(Bandwidth bandwidth) const { return bandwidth.value; }
    Json operator()(Ratio ratio) const { return ratio.value; }
    Json operator()(const NameList &list) const { return list.names; }
    template <class T>
    Json operator()(const T &value) const
    {
        return value;
    }
};

Json jsonOf(const Cell &cell) { return std::visit(ToJson{}, cell.value); }

Json jsonOf(const Table &table, const std::vector<Cell> &row)
{
    Json record = Json::object();
    for (std::size_t column = 0; column < row.size(); ++column)
        record[table.columns[column].key] = jsonOf(row[column]);
    return record;
}

Json jsonOf(const Facts &facts)
{
    Json record = Json::object();
    for (const Fact &fact : facts.facts)
        record[fact.key] = jsonOf(fact.cell);
    return record;
}

Json jsonOf(const Table &table)
{
    Json list = Json::array();
    for (const auto &row : table.rows)
        list.push_back(jsonOf(table, row));
    return list;
}

Json headerOf(const Document &document)
{
    Json header{{"schema", "tarnex-" + document.schema}, {"version", schemaVersion}};
    if (!document.unit.empty())
        header["unit"] = document.unit;
    return header;
}

/** Names in files may hold bytes that are no UTF-8; a replacement character stands for them. */
std::string dumped(const Json &json, int indent)
{
    return json.dump(indent, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string lineOf(const std::string &kind, const Json &record)
{
    Json line{{"record", kind}};
    line.update(record);
    return dumped(line, -1);
}

} // namespace

std::string jsonOf(const Document &document)
{
    Json json = headerOf(document);
    for (const Section &section : document.sections) {
        if (const auto *const table = std::get_if<Table>(&section))
            json[table->key] = jsonOf(*table);
        else if (const auto *const facts = std::get_if<Facts>(&section))
            json[facts->key] = jsonOf(*facts);
    }
    return dumped(json, 2);
}

std::string jsonLinesOf(const Document &document)
{
    std::string lines = dumped(headerOf(document), -1);
    for (const Section &section : document.sections) {
        if (const auto *const facts = std::get_if<Facts>(&section))
            lines += lineOf(facts->key, jsonOf(*facts));
        else if (const auto *const table = std::get_if<Table>(&section))
            for (const auto &row : table->rows)
                lines += lineOf(table->key, jsonOf(*table, row));
    }
    return lines;
}

} // namespace tarnex::cli
