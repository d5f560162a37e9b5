/** What our documents say of themselves, and the words in them that stand for choices. */
#ifndef TARNEX_FORMATS_JSON_SCHEMAS_H
#define TARNEX_FORMATS_JSON_SCHEMAS_H

#include "formats/plan.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarnex::formats::json
{

inline constexpr const char *networkSchema = "tarnex-network";
inline constexpr const char *demandsSchema = "tarnex-demands";
inline constexpr const char *planSchema = "tarnex-plan";
inline constexpr int schemaVersion = 1;

/** "given", "level", "largest", "smallest". */
std::string_view wordFor(Order order);
/** "none", "local", "global", "local-or-global". */
std::string_view wordFor(const LevelScheme &scheme);
/** "local", "global"; of a backup. */
std::string_view wordFor(LspKind kind);

// What a word stands for; Problem when it stands for nothing.
Order orderFor(const std::string &word);
LevelScheme schemeFor(const std::string &word);
LspKind backupKindFor(const std::string &word);
Reason reasonFor(const std::string &text); ///< of textOf(Reason)

} // namespace tarnex::formats::json

#endif
