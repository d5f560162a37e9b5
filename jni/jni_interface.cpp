/*
 * The native methods but that of backups (jni_backup.cpp) of org.kestro.repository.TARNEX.JNITARNEX
 * (unit "jni_interface"): they convert between Java and the engine and do nothing else. Signatures
 * are checked against the header that the Java compiler generates.
 */
#include "admission/admission.h"
#include "admission/placement.h"
#include "common/records.h"
#include "common/setup.h"
#include "contract.h"
#include "database/books/change.h"
#include "database/books/dump.h"
#include "database/books/lookup.h"
#include "error/report.h"
#include "jni_support.h"
#include "session_call.h"
#include "sessions.h"

#include <org_kestro_repository_TARNEX_JNITARNEX.h>

#include <algorithm>
#include <cstdio>

namespace
{

constexpr Unit here{"jni_interface"};

using OwnedLSP = Owned<DBLabelSwitchedPath, DBlspDestroy>;

/** Puts the whole bandwidth into one class type; none when `oa` is not in use. */
void setBandwidth(double (&bw)[MAXOA], jint oa, jfloat bandwidth)
{
    std::ranges::fill(bw, 0.0);
    if (oa >= 0 && oa < NBOA)
        bw[oa] = bandwidth;
}

/** The two messages of an LSP that could not be added. */
void pushLSPFailure(Message message, jint lspid, jfloat bw)
{
    here.push(CRITICAL, message);
    addError(CRITICAL, "Lsp ID: %ld, Request: %f\n", long{lspid}, static_cast<double>(bw));
}

/** What Java says of an LSP computed elsewhere. */
struct LSPArguments {
    jint lspid;
    jint PL;
    jint OA;
    jfloat bw;
};

bool checkLSP(EngineCall &call, const LSPArguments &lsp, jintArray path)
{
    return checkArray(call, "path", path, 0) && checkLevel(call, lsp.PL) &&
           checkBandwidth(call, "bw", lsp.bw);
}

/** Record of an LSP computed elsewhere; null when it cannot be made. */
OwnedLSP makeRecord(const LSPArguments &arguments, std::span<const jint> path, DBLSPType type)
{
    OwnedLSP lsp{DBlspNew()};
    const auto length = static_cast<Long>(path.size());
    if (!lsp || longVecResize(&lsp->path, length) != 0)
        return nullptr;
    std::ranges::copy(path, lsp->path.cont);
    lsp->path.top = length;
    lsp->id = arguments.lspid;
    lsp->precedence = arguments.PL;
    lsp->type = type;
    setBandwidth(lsp->bw, arguments.OA, arguments.bw);
    return lsp;
}

/** Adds an LSP computed elsewhere, which preempts nothing; 0, or -1 after a message. */
int addComputedLSP(const OwnedLSP &lsp)
{
    Scoped<LongList, longVecEnd> preemptList;
    if (!lsp || longVecInit(&preemptList, -1) != 0)
        return -1;
    return DBaddLSP(centralDB, lsp.get(), &preemptList);
}

/** Ends a call whose database operation has the given result. */
void finish(SessionCall &call, int result, Message failure)
{
    if (result >= 0)
        return;
    here.push(CRITICAL, failure);
    call.fail(addDBException);
}

} // namespace

// --- sessions ---

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniinitTarnex(
    JNIEnv *env, jobject obj, jint nbOA, jint nbPL, jboolean colorClause, jboolean allowReroute,
    jboolean capacityClause, jfloat loadbal, jfloat load, jfloat sqLoad, jfloat relativeLoad,
    jfloat sqRelativeLoad, jfloat delay, jfloat fortz, jobjectArray reroutingScorecoef)
{
    ReroutingConfig reroutingConfig{};
    EngineCall call{env};
    if (!checkCount(call, "nbOA", nbOA, MAXOA) || !checkCount(call, "nbPL", nbPL, MAXPL) ||
        !readMatrix(call, "reroutingScorecoef", reroutingScorecoef, nbOA, nbPL,
                    reroutingConfig.scoreCoef))
        return;
    const jfieldID sessId = fieldOf(env, obj, "sessId", "I");
    if (!sessId)
        return;

    startFreshErrorStack();
    if (nbSessions >= maxSessions) {
        here.push(CRITICAL, "Too many Sessions (%d) in %s at line %d", nbSessions);
        return;
    }
    if (nbSessions == -1)
        init();
    COST = 0.0;
    NBOA = nbOA;
    NBPL = nbPL;
    centralDB = DBnew(0);
    if (!centralDB) {
        here.push(CRITICAL, "Impossible to init a DataBase in %s at line %d");
        return;
    }

    tarnexConfig = {};
    tarnexConfig.predicateConfig = {allowReroute != JNI_FALSE, capacityClause != JNI_FALSE,
                                    colorClause != JNI_FALSE};
    PrimaryComputationConfig &weights = tarnexConfig.primaryComputationConfig;
    weights.loadBal[0] = loadbal;
    weights.load[0] = load;
    weights.sqLoad[0] = sqLoad;
    weights.relLoad[0] = relativeLoad;
    weights.sqRelLoad[0] = sqRelativeLoad;
    weights.delay[0] = delay;
    weights.Fortz = fortz;
    tarnexConfig.reroutingConfig = reroutingConfig;

    const int slot = openSession();
    if (slot < 0) {
        DBdestroy(centralDB);
        centralDB = nullptr;
        return;
    }
    saveCntx(slot);
    currentSessId = slot;
    env->SetIntField(obj, sessId, slot);
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jnikillTarnex(JNIEnv *env,
                                                                                 jobject obj)
{
    const EngineCall call{env};
    const int slot = loadCntx(env, obj);
    if (slot < 0 || !centralDB) {
        std::fputs("ERROR, call to killTarnex before initTarnex\n", stderr);
        return;
    }
    DBdestroy(centralDB);
    centralDB = nullptr;
    printErrorStack();
    errorDestroy();
    closeSession(slot);
}

// --- topology and LSPs ---

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniprintTarnexDB(JNIEnv *env,
                                                                                    jobject obj)
{
    const SessionCall call{env, obj};
    if (call)
        DBprintDB(centralDB);
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniaddNode(JNIEnv *env,
                                                                              jobject obj,
                                                                              jint nodeId)
{
    SessionCall call{env, obj};
    if (call)
        finish(call, DBaddNode(centralDB, nodeId), "Impossible to init a Node in %s at line %d");
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniaddLink(
    JNIEnv *env, jobject obj, jint linkId, jint /*color*/, jint src, jint dst, jfloatArray cap,
    jobjectArray rbw, jobjectArray /*pbw*/, jobjectArray /*bbw*/, jobjectArray /*fbw*/)
{
    SessionCall call{env, obj};
    double capacities[MAXOA] = {};
    double reservations[MAXOA][MAXPL] = {};
    if (!call || !readLinkState(call, cap, rbw, capacities, reservations))
        return;

    const Owned<DBLinkState, DBlinkStateDestroy> ls{DBlinkStateNew()};
    if (!ls) {
        here.push(CRITICAL, "Impossible to init a Link in %s at line %d");
        return;
    }
    std::ranges::copy(capacities, ls->cap);
    for (int oa = 0; oa < MAXOA; ++oa)
        std::ranges::copy(reservations[oa], ls->rbw[oa]);
    finish(call, DBaddLink(centralDB, linkId, src, dst, ls.get()),
           "Impossible to add Link in %s at line %d");
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniaddLSP(
    JNIEnv *env, jobject obj, jint lspid, jintArray path, jint PL, jint OA, jfloat bw)
{
    SessionCall call{env, obj};
    const LSPArguments arguments{lspid, PL, OA, bw};
    if (!call || !checkLSP(call, arguments, path))
        return;
    const IntElements nodes{env, path};
    if (!nodes)
        return;
    tarnexConfig.predicateConfig.allowReroute = false;
    if (addComputedLSP(makeRecord(arguments, nodes.values(), primaryLSP)) < 0) {
        pushLSPFailure(
            "Impossible to add PRIMARY LSP (computed by another algorithm) in %s at line %d", lspid,
            bw);
        call.fail(addDBException);
    }
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniaddBackupLSP(
    JNIEnv *env, jobject obj, jint lspid, jint plspid, jintArray path, jint PL, jint OA, jfloat bw,
    jboolean type)
{
    SessionCall call{env, obj};
    const LSPArguments arguments{lspid, PL, OA, bw};
    if (!call || !checkLSP(call, arguments, path))
        return;
    const IntElements nodes{env, path};
    if (!nodes)
        return;
    tarnexConfig.predicateConfig.allowReroute = false;
    DBLabelSwitchedPath *primary = DBgetLSP(centralDB, plspid);
    if (!primary) {
        pushLSPFailure("Impossible to find PRIMARY LSP in %s at line %d", lspid, bw);
        call.fail(addDBException);
        return;
    }
    OwnedLSP lsp = makeRecord(arguments, nodes.values(), type ? localBackupLSP : globalBackupLSP);
    if (lsp && longVecCopy(&lsp->primPath, &primary->path) != 0)
        lsp.reset();
    if (lsp)
        lsp->primID = plspid;
    if (addComputedLSP(lsp) < 0) {
        pushLSPFailure(
            "Impossible to add BACKUP LSP (computed by another algorithm) in %s at line %d", lspid,
            bw);
        call.fail(addDBException);
    }
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniremoveLSP(JNIEnv *env,
                                                                                jobject obj,
                                                                                jint lspid)
{
    SessionCall call{env, obj};
    if (call)
        finish(call, DBremoveLSP(centralDB, lspid), "Impossible to remove LSP in %s at line %d");
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniremoveNode(JNIEnv *env,
                                                                                 jobject obj,
                                                                                 jint nodeid)
{
    SessionCall call{env, obj};
    if (call)
        finish(call, DBremoveNode(centralDB, nodeid), "Impossible to remove Node in %s at line %d");
}

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniremoveLink(JNIEnv *env,
                                                                                 jobject obj,
                                                                                 jint srcNodeId,
                                                                                 jint dstNodeId)
{
    SessionCall call{env, obj};
    if (call)
        finish(call, DBremoveLink(centralDB, srcNodeId, dstNodeId),
               "Impossible to remove Link in %s at line %d");
}

// --- primary paths ---

namespace
{

/** What a primary path call asks for. */
struct PathArguments {
    jint id;
    jint src;
    jint dst;
    jint OA;
    jint PL;
    jfloat reservation;
};

/** Builds the request; 0, or -1 after a message. */
int fillRequest(const PathArguments &arguments, LSPRequest &req)
{
    req.type = primaryLSP;
    req.precedence = arguments.PL;
    req.id = arguments.id;
    setBandwidth(req.bw, arguments.OA, arguments.reservation);
    for (const Long node : {arguments.src, -1, arguments.dst}) {
        if (longVecPushBack(&req.path, node) != 0)
            return -1;
    }
    return 0;
}

/** Java arrays of what a placement reports. */
class ArrayReport : public PlacementReport
{
public:
    explicit ArrayReport(JNIEnv *environment) : env(environment) {}

    bool takePath(std::span<const Long> nodes) override
    {
        path.reset(newIntArray(env, nodes));
        return static_cast<bool>(path);
    }
    bool takePreempted(std::span<const Long> ids) override
    {
        preempted.reset(newIntArray(env, ids));
        return static_cast<bool>(preempted);
    }

    JNIEnv *const env;
    LocalRef<jintArray> path{env, nullptr};
    LocalRef<jintArray> preempted{env, nullptr}; ///< null when nothing is
};

/** Says in the session and in Java why a placement failed. */
void fail(SessionCall &call, Placement end)
{
    switch (end) {
    case Placement::noPath:
        here.push(CRITICAL, "Impossible to compute Path in %s at line %d");
        return call.fail(noRouteToHostException);
    case Placement::notListed:
        here.push(CRITICAL, "Impossible to obtain preemptList in %s at line %d");
        return call.fail(routingException);
    case Placement::notAdded:
        here.push(CRITICAL, "Impossible to add PRIMARY LSP in %s at line %d");
        return call.fail(addDBException);
    case Placement::notRemoved:
        here.push(CRITICAL, "Impossible to remove LSP in %s at line %d");
        return call.fail(addDBException);
    case Placement::notReported: // the JVM has raised an exception
    case Placement::done:
        return;
    }
}

} // namespace

JNIEXPORT jintArray JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jnicomputePath(
    JNIEnv *env, jobject obj, jint id, jint src, jint dst, jint /*rrid*/, jint /*rrsrc*/,
    jint /*rrdst*/, jint OA, jint PL, jfloat reservation, jintArray /*colorArray*/, jboolean ADDLSP,
    jboolean PREEMPT)
{
    SessionCall call{env, obj};
    if (!call || !checkLevel(call, PL) || !checkBandwidth(call, "reservation", reservation))
        return nullptr;
    const jfieldID lsps = PREEMPT ? fieldOf(env, obj, "lsps", "[I") : nullptr;
    if (PREEMPT && !lsps)
        return nullptr;
    tarnexConfig.predicateConfig.allowReroute = PREEMPT != JNI_FALSE;

    LSPRequest req{};
    const bool isMade = lspRequestInit(&req) == 0;
    const Guard<LSPRequest, lspRequestEnd> guard{isMade ? &req : nullptr};
    const bool isFilled = isMade && fillRequest({id, src, dst, OA, PL, reservation}, req) == 0;
    ArrayReport report{env};
    const Placement end = isFilled ? placePrimary(centralDB, &req, goalOf(ADDLSP, PREEMPT), report)
                                   : Placement::noPath;
    if (end != Placement::done) {
        fail(call, end);
        return nullptr;
    }
    if (report.preempted)
        env->SetObjectField(obj, lsps, report.preempted.get());
    return report.path.release();
}
