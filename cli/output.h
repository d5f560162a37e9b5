/** Where what a command tells goes, and in which form. */
#ifndef TARNEX_CLI_OUTPUT_H
#define TARNEX_CLI_OUTPUT_H

#include "cli/declaration.h"
#include "cli/document.h"

#include <functional>
#include <ostream>
#include <string>

namespace tarnex::cli
{

/** Declares `--json`, `--jsonl` and `--csv`; `csvOf` says of what: "the links". */
void declareForms(Declaration &declaration, Form &form, const std::string &csvOf);

/** Writes `output` or, when that is empty, a file beside `input` with another suffix (".svg"). */
void writeBeside(const std::string &input, const std::string &suffix, const std::string &output,
                 std::function<void(std::ostream &)> write);

} // namespace tarnex::cli

#endif
