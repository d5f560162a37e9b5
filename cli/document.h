/**
 * What a command found out, once for all forms in which it is told: tables for people, a JSON
 * document, a JSON record per line, CSV.
 */
#ifndef TARNEX_CLI_DOCUMENT_H
#define TARNEX_CLI_DOCUMENT_H

#include "cli/terminal.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarnex::cli
{

/** A bandwidth in the document's unit. */
struct Bandwidth {
    double value = 0.0;
};

/** A part of a whole: 0.5 is 50 %. */
struct Ratio {
    double value = 0.0;
};

/** Names of nodes along a path. */
using NodeNames = std::vector<std::string>;

/** Names of several things. */
struct NameList {
    std::vector<std::string> names;
};

/** A value; none at all where there is nothing to say. */
using Value = std::variant<std::monostate, std::string, bool, std::int64_t, double, Bandwidth,
                           Ratio, NodeNames, NameList>;

/** How many of something. */
Value number(std::size_t count);

/** Whether it is so. */
Value truth(bool isSo);

/** A value in a table, and how it stands out. */
struct Cell {
    Value value;
    Tone tone = Tone::plain;

    Cell(Value content = {}, Tone how = Tone::plain) : value(std::move(content)), tone(how) {}
    Cell(const char *text) : value(std::string{text}) {}
    Cell(std::string text) : value(std::move(text)) {}
    Cell(double number) : value(number) {}
    Cell(Bandwidth bandwidth) : value(bandwidth) {}
    Cell(Ratio ratio) : value(ratio) {}
    Cell(NodeNames names) : value(std::move(names)) {}
    Cell(NameList names) : value(std::move(names)) {}
};

/** A column: its name in files, and its heading for people; empty: people do not see it. */
struct Column {
    std::string key;
    std::string heading;
};

/** Records that are alike. */
struct Table {
    std::string key{};   ///< of the list in JSON
    std::string title{}; ///< for people; empty: none
    std::vector<Column> columns{};
    std::vector<std::vector<Cell>> rows{};
    std::string ifEmpty{};        ///< what people read in its place; empty: nothing at all
    std::size_t shown = SIZE_MAX; ///< of the rows, for people; files have all
    std::size_t nbLeftOut = 0;    ///< rows that are not even there, when only people read
};

/** One thing that is known. */
struct Fact {
    std::string key;
    std::string label;
    Cell cell;
};

/** What is known about something as a whole. */
struct Facts {
    std::string key;
    std::string title;
    std::vector<Fact> facts;
};

/** Text for people alone. */
struct Note {
    std::string text;
};

using Section = std::variant<Facts, Table, Note>;

/** The form in which a document is told. */
enum class Form { text, json, jsonLines, csv };

/** All of it. */
struct Document {
    std::string schema; ///< name of the schema, "show"
    std::string unit;   ///< of its bandwidths; empty: not known
    std::vector<Section> sections;
};

/** The version of the schemas in `docs/schema/`. */
inline constexpr int schemaVersion = 1;

/** For people, with the colours of a terminal. */
std::string textOf(const Document &document, const Terminal &terminal);
/** One JSON object: a member per section. */
std::string jsonOf(const Document &document);
/** A JSON object per line: a header, then a record per row and per group of facts. */
std::string jsonLinesOf(const Document &document);
/** The first table as RFC 4180 has it, or the first facts if there is no table. */
std::string csvOf(const Document &document);

/** Prints a document on standard output. */
void print(const Document &document, Form form);

} // namespace tarnex::cli

#endif
