#include "error/error.h"

#include "common/common.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

ErrorList errorManager{};

namespace
{

constexpr std::size_t messageBytes = sizeof(ErrorElem::message);
constexpr Long spareEntries = 5;

/** Makes the stack twice as long; false, with all entries still valid, when there is no memory. */
bool doubleStack()
{
    const std::size_t newSize = static_cast<std::size_t>(errorManager.size) * 2;
    void *list = myrealloc(errorManager.list, newSize * sizeof(ErrorElem));
    if (!list)
        return false;
    errorManager.list = static_cast<ErrorElem *>(list);
    errorManager.size = static_cast<Long>(newSize);
    return true;
}

/** Stores an entry; lost when the stack is full. */
void store(GravityLevel level, const char *text)
{
    if (errorManager.top >= errorManager.size)
        return;
    ErrorElem &entry = errorManager.list[errorManager.top++];
    entry.gravity = level;
    std::strncpy(entry.message, text, messageBytes - 1);
    entry.message[messageBytes - 1] = '\0';
}

const char *labelOf(GravityLevel level)
{
    switch (level) {
    case INFO:
        return "[INFO] ";
    case WARNING:
        return "[WARNING] ";
    case CRITICAL:
        return "[CRITICAL] ";
    case PANIC:
        return "[PANIC] ";
    }
    return "";
}

} // namespace

void errorInit()
{
    auto *list = static_cast<ErrorElem *>(mycalloc(1, sizeof(ErrorElem)));
    if (!list) {
        std::perror("Unable to initialize error manager");
        std::abort();
    }
    errorManager = {1, 0, list};
}

void addError(GravityLevel level, const char *msg, ...)
{
    if (!errorManager.list)
        return;

    char text[messageBytes];
    va_list arguments;
    va_start(arguments, msg);
    std::vsnprintf(text, sizeof text, msg, arguments);
    va_end(arguments);

    const bool roomy = errorManager.top < errorManager.size - spareEntries;
    if (!roomy && !doubleStack())
        store(CRITICAL, "Critical lack of memory encountered while resizing error manager");
    store(level, text);
}

void printErrorStack()
{
    for (Long i = errorManager.top - 1; i >= 0; --i) {
        const ErrorElem &entry = errorManager.list[i];
        std::fprintf(stderr, "%s%s\n", labelOf(entry.gravity), entry.message);
    }
}

void errorDestroy()
{
    if (errorManager.list)
        myfree(errorManager.list);
    errorManager = {};
}
