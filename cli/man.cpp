#include "cli/pages.h"
#include "cli/text.h"

#include <algorithm>
#include <fmt/format.h>

namespace tarnex::cli
{

namespace
{

/** Text in which nothing is a request to the formatter. */
std::string plain(const std::string &text)
{
    std::string roff;
    bool isLineStart = true;
    for (const char byte : text) {
        if (isLineStart && (byte == '.' || byte == '\''))
            roff += "\\&";
        if (byte == '\\')
            roff += "\\e";
        else if (byte == '-')
            roff += "\\-";
        else
            roff += byte;
        isLineStart = byte == '\n';
    }
    return roff;
}

std::string section(const std::string &title)
{
    std::string upper = title;
    std::ranges::transform(upper, upper.begin(),
                           [](char letter) { return static_cast<char>(std::toupper(letter)); });
    return fmt::format(".SH {}\n", plain(upper));
}

std::string paragraphs(const std::string &text)
{
    std::string roff = ".PP\n";
    for (const std::string &line : split(text, '\n')) {
        if (line.empty())
            roff += ".PP\n";
        else if (line.front() == ' ')
            roff += fmt::format(".br\n{}\n", plain(line));
        else
            roff += plain(line) + '\n';
    }
    return roff;
}

std::string entry(const std::string &name, const std::string &argument, const std::string &help)
{
    return fmt::format(".TP\n\\fB{}\\fR{}\n{}\n", plain(name),
                       argument.empty() ? "" : fmt::format(" \\fI{}\\fR", plain(argument)),
                       plain(help));
}

std::string entries(const std::vector<Parameter> &parameters)
{
    std::string roff;
    for (const Parameter &parameter : parameters)
        roff += entry(spellingsOf(parameter), parameter.argument, parameter.help);
    return roff;
}

std::string examplesOf(const Page &page)
{
    std::string roff;
    for (const Example &example : page.examples)
        roff += fmt::format(".PP\n{}\n.PP\n.RS 4\n.nf\n$ {}\n.fi\n.RE\n", plain(example.what),
                            plain(example.line));
    return roff;
}

std::string sectionOf(Command &command)
{
    const Page &page = command.page();
    Declaration declaration;
    command.declare(declaration);
    std::string roff = fmt::format(".SS {}\n.PP\n", plain(usageOf(page, declaration)));
    roff += plain(page.summary) + ".\n" + paragraphs(page.purpose);
    roff += entries(declaration.operands());
    for (const ParameterGroup &group : declaration.groups())
        roff += fmt::format(".PP\n\\fI{}\\fR\n", plain(group.title)) + entries(group.options);
    return roff + examplesOf(page);
}

} // namespace

std::string manualPage()
{
    const Page &page = overview();
    std::string roff = ".TH TARNEX 1 \"\" \"tarnex " TARNEX_VERSION "\" \"User commands\"\n";
    roff += section("Name") + "tarnex \\- " + plain(page.summary) + '\n';
    roff += section("Synopsis") + "\\fBtarnex\\fR \\fICOMMAND\\fR [\\fIARGUMENT\\fR...]\n.br\n" +
            "\\fBtarnex \\-\\-version\\fR\n";
    roff += section("Description") + paragraphs(page.purpose);
    roff += section("Commands");
    for (const std::string &name : commandNames())
        roff += sectionOf(*makeCommand(name));
    roff += section("Examples") + examplesOf(page);
    roff += section("Exit status");
    for (const auto &[status, meaning] : exitStatuses())
        roff += entry(std::to_string(status), "", meaning);
    roff += section("Environment") +
            entry("NO_COLOR", "", "when set, nothing is coloured, on terminals either");
    return roff;
}

} // namespace tarnex::cli
