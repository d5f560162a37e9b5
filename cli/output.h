/** The options of commands that tell something: in which form. */
#ifndef TARNEX_CLI_OUTPUT_H
#define TARNEX_CLI_OUTPUT_H

#include "cli/declaration.h"
#include "cli/document.h"

namespace tarnex::cli
{

/** Declares `--json`, `--jsonl` and `--csv`; `csvOf` says of what: "the links". */
void declareForms(Declaration &declaration, Form &form, const std::string &csvOf);

} // namespace tarnex::cli

#endif
