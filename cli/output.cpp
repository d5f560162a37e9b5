#include "cli/output.h"

#include "cli/errors.h"
#include "cli/interrupt.h"

#include <filesystem>

namespace tarnex::cli
{

namespace
{

void declareForm(Declaration &declaration, std::string name, std::string help, Form &form,
                 Form value)
{
    declaration.option({.name = std::move(name),
                        .help = std::move(help),
                        .take = [&form, value](const std::string &) {
                            if (form != Form::text)
                                throw UsageError(
                                    "two forms of output: expected one of --json, --jsonl, --csv");
                            form = value;
                        }});
}

} // namespace

void declareForms(Declaration &declaration, Form &form, const std::string &csvOf)
{
    declaration.group("Output");
    declareForm(declaration, "--json", "One JSON document, with schema and version", form,
                Form::json);
    declareForm(declaration, "--jsonl", "A JSON object per line, the first with schema and version",
                form, Form::jsonLines);
    declareForm(declaration, "--csv", "CSV with a line of headings: " + csvOf, form, Form::csv);
}

void writeBeside(const std::string &input, const std::string &suffix, const std::string &output,
                 std::function<void(std::ostream &)> write)
{
    std::filesystem::path target{output};
    if (output.empty())
        target = std::filesystem::path{input}.replace_extension(suffix);
    replaceFiles({{std::move(target), std::move(write)}});
}

} // namespace tarnex::cli
