/**
 * Ctrl-C. It ends the process at once with a sentence, unless an operation that can stop by itself
 * is going on: that one is then asked to, and a second Ctrl-C ends the process.
 */
#ifndef TARNEX_CLI_INTERRUPT_H
#define TARNEX_CLI_INTERRUPT_H

#include "formats/write.h"

#include <vector>

namespace tarnex::cli
{

/** From now on Ctrl-C is handled as above. */
void handleInterrupts();

/** What the process is at, for the sentence; a text that lasts. */
void nowDoing(const char *what);

/** Whether Ctrl-C was pressed since the operation began. */
bool isInterrupted();

/** While one is there, an operation that asks `isInterrupted` is going on. */
class Stoppable
{
public:
    Stoppable();
    ~Stoppable();
    Stoppable(const Stoppable &) = delete;
    Stoppable &operator=(const Stoppable &) = delete;
};

/** Has files written through their neighbours, as formats::replaceFiles; Ctrl-C on the way leaves
 * the old files alone and throws Interrupted. From then on the sentence names them as written. */
void replaceFiles(std::vector<formats::FileToWrite> files);

} // namespace tarnex::cli

#endif
