/** Dividing a whole by shares. */
#ifndef TARNEX_FORMATS_SHARES_H
#define TARNEX_FORMATS_SHARES_H

#include "formats/read.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex::formats
{

/** What shares may add up to. */
enum class Total { atMostOne, one };

/** Checks the shares that an option gives: 1 to 8 different names, each share above 0, and their
 * sum; InputError that names the option. */
void checkShares(const std::vector<Share> &shares, std::string_view option, Total total);

/** The names of shares. */
std::vector<std::string> namesOf(const std::vector<Share> &shares);

/** Gives out turns by shares: after any number of turns each has had its share of them, as nearly
 * as whole turns allow. */
class Turns
{
public:
    explicit Turns(const std::vector<Share> &given) : shares(given), nbTaken(given.size(), 0) {}

    /** Whose turn is next: of the one that has had least of its share, the first if several. */
    std::size_t next();

private:
    std::vector<Share> shares;
    std::vector<std::size_t> nbTaken;
    std::size_t nbTurns = 0;
};

} // namespace tarnex::formats

#endif
