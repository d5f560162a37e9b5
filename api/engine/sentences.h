/** Parts of the sentences that refusals tell people. */
#ifndef TARNEX_API_SENTENCES_H
#define TARNEX_API_SENTENCES_H

#include "common/types.h"

#include <tarnex/refusal.h>

#include <optional>
#include <string>

namespace tarnex::inside
{

/** "node 7". */
std::string node(Long id);

/** "from node 1 to node 2". */
std::string fromTo(Long from, Long to);

/** A number with as few digits as lead back to it. */
std::string textOf(double number);

/** How a sentence ends that has told what does not fit: "; 40 would fit." or "; nothing would
 * fit.", in at most 12 digits, none of which says more than there is. */
std::string whatFits(const std::optional<double> &largest);

/** A refusal without figures. */
Refusal refusal(Reason reason, std::string sentence);

} // namespace tarnex::inside

#endif
