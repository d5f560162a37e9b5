#include "computation/backup/free_ids.h"

#include "error/report.h"

namespace
{

constexpr Unit here{"computation/backup/backup"};

} // namespace

bool reportIfFree(Long link, Long src, Long dst)
{
    if (src != -1 && dst != -1)
        return false;
    constexpr Message message{
        "Warning there is no link numbered %ld : src = %ld, dst = %ld .... in %s at line %ld"};
    addError(INFO, message.format, long{link}, long{src}, long{dst}, here.name, long{message.line});
    return true;
}

void reportFreeIds(const DataBase &db)
{
    for (Long link = 0; link < db.linkSrcVec.top; ++link) {
        const bool isFree = db.linkSrcVec.cont[link] == 0;
        if (isFree)
            reportIfFree(link, -1, -1);
    }
}
