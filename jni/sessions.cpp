#include "sessions.h"

#include "error/report.h"
#include "jni_support.h"

#include <algorithm>

SessionItem *sessions[maxSessions];
int nbSessions = -1;
int lastSession = -1;
int currentSessId = -1;

namespace
{

constexpr Unit here{"jni_interface"};

bool isLive(int slot) { return slot >= 0 && slot < maxSessions && sessions[slot]; }

/**
 * Pushes the message on the stack in the globals. If that is a live session's, the push may have
 * moved it: the session gets its new address and size, but not the higher count of messages, so
 * this one is gone with the session's next load.
 */
void reportNoSession(int slot)
{
    here.push(CRITICAL, "Non existing Session (%d) in %s at line %d", slot);
    if (isLive(currentSessId)) {
        ErrorList &kept = sessions[currentSessId]->errorManager;
        kept.list = errorManager.list;
        kept.size = errorManager.size;
    }
}

/** Releases an error stack that no session owns before the globals take another one. */
void dropUnownedStack()
{
    if (currentSessId == -1)
        errorDestroy();
}

} // namespace

int init()
{
    nbSessions = 0;
    std::ranges::fill(sessions, nullptr);
    return 0;
}

int saveCntx(int sessId)
{
    SessionItem &session = *sessions[sessId];
    session.centralDB = centralDB;
    session.tarnexConfig = tarnexConfig;
    session.errorManager = errorManager;
    return 0;
}

int loadCntx(JNIEnv *env, jobject obj)
{
    const jfieldID field = fieldOf(env, obj, "sessId", "I");
    if (!field)
        return -1;
    const int slot = env->GetIntField(obj, field);
    if (!isLive(slot)) {
        reportNoSession(slot);
        return -1;
    }
    dropUnownedStack();
    centralDB = sessions[slot]->centralDB;
    tarnexConfig = sessions[slot]->tarnexConfig;
    errorManager = sessions[slot]->errorManager;
    currentSessId = slot;
    return slot;
}

void startFreshErrorStack()
{
    dropUnownedStack();
    errorInit();
    currentSessId = -1;
}

int openSession()
{
    auto *item = static_cast<SessionItem *>(mymalloc(sizeof(SessionItem)));
    if (!item)
        return here.fail("Critical lack of memory in %s at line %d");
    int slot = (lastSession + 1) % maxSessions;
    while (sessions[slot])
        slot = (slot + 1) % maxSessions;
    sessions[slot] = item;
    lastSession = slot;
    nbSessions += 1;
    return slot;
}

void closeSession(int slot)
{
    myfree(sessions[slot]);
    sessions[slot] = nullptr;
    nbSessions -= 1;
    currentSessId = -1;
}
