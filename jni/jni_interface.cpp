/*
 * The native methods of org.kestro.repository.TARNEX.JNITARNEX (unit "jni_interface"): they convert
 * between Java and the engine and do nothing else. Signatures are checked against the header that
 * the Java compiler generates.
 */
#include "admission/admission.h"
#include "common/records.h"
#include "common/setup.h"
#include "computation/primary/driver.h"
#include "database/books/dump.h"
#include "error/report.h"
#include "jni_support.h"
#include "session_call.h"
#include "sessions.h"

#include <org_kestro_repository_TARNEX_JNITARNEX.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace
{

constexpr Unit here{"jni_interface"};

using ListGuard = Guard<LongList, longVecEnd>;
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
    jintArray path;
    jint PL;
    jint OA;
    jfloat bw;
};

bool checkLSP(JNIEnv *env, const LSPArguments &lsp)
{
    return checkArray(env, "path", lsp.path, 0) && checkLevel(env, lsp.PL) &&
           checkBandwidth(env, "bw", lsp.bw);
}

/** Record of an LSP computed elsewhere; null when it cannot be made. */
OwnedLSP makeRecord(JNIEnv *env, const LSPArguments &arguments, DBLSPType type)
{
    OwnedLSP lsp{DBlspNew()};
    const jsize length = env->GetArrayLength(arguments.path);
    if (!lsp || readInts(env, arguments.path, length, lsp->path) != 0)
        return nullptr;
    lsp->id = arguments.lspid;
    lsp->precedence = arguments.PL;
    lsp->type = type;
    setBandwidth(lsp->bw, arguments.OA, arguments.bw);
    return lsp;
}

/** Adds an LSP computed elsewhere, which preempts nothing; 0, or -1 after a message. */
int addComputedLSP(const OwnedLSP &lsp)
{
    LongList preemptList{};
    if (!lsp || longVecInit(&preemptList, -1) != 0)
        return -1;
    const ListGuard guard{&preemptList};
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

/** Reads capacities and reservations into a new link's state; false: exception pending. */
bool readLinkState(JNIEnv *env, jfloatArray cap, jobjectArray rbw, double (&capacities)[MAXOA],
                   double (&reservations)[MAXOA][MAXPL])
{
    if (!checkArray(env, "cap", cap, NBOA) ||
        !readFloats(env, cap, {capacities, static_cast<std::size_t>(NBOA)}) ||
        !readMatrix(env, "rbw", rbw, NBOA, NBPL, reservations))
        return false;
    for (int oa = 0; oa < NBOA; ++oa) {
        if (std::isnan(capacities[oa])) {
            throwIllegalArgument(env, "cap[%d] must be a number", oa);
            return false;
        }
        for (int p = 0; p < NBPL; ++p) {
            if (!std::isfinite(reservations[oa][p]) || reservations[oa][p] < 0.0) {
                throwIllegalArgument(
                    env, "rbw[%d][%d] must be a finite bandwidth of at least 0, but is %g", oa, p,
                    reservations[oa][p]);
                return false;
            }
        }
    }
    return true;
}

} // namespace

// --- sessions ---

JNIEXPORT void JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jniinitTarnex(
    JNIEnv *env, jobject obj, jint nbOA, jint nbPL, jboolean colorClause, jboolean allowReroute,
    jboolean capacityClause, jfloat loadbal, jfloat load, jfloat sqLoad, jfloat relativeLoad,
    jfloat sqRelativeLoad, jfloat delay, jfloat fortz, jobjectArray reroutingScorecoef)
{
    ReroutingConfig reroutingConfig{};
    if (env->ExceptionCheck() || !checkCount(env, "nbOA", nbOA, MAXOA) ||
        !checkCount(env, "nbPL", nbPL, MAXPL) ||
        !readMatrix(env, "reroutingScorecoef", reroutingScorecoef, nbOA, nbPL,
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
    if (env->ExceptionCheck())
        return;
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
    if (!call || !readLinkState(env, cap, rbw, capacities, reservations))
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
    const LSPArguments arguments{lspid, path, PL, OA, bw};
    if (!call || !checkLSP(env, arguments))
        return;
    tarnexConfig.predicateConfig.allowReroute = false;
    if (addComputedLSP(makeRecord(env, arguments, primaryLSP)) < 0) {
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
    const LSPArguments arguments{lspid, path, PL, OA, bw};
    if (!call || !checkLSP(env, arguments))
        return;
    tarnexConfig.predicateConfig.allowReroute = false;
    DBLabelSwitchedPath *primary = DBgetLSP(centralDB, plspid);
    if (!primary) {
        pushLSPFailure("Impossible to find PRIMARY LSP in %s at line %d", lspid, bw);
        call.fail(addDBException);
        return;
    }
    OwnedLSP lsp = makeRecord(env, arguments, type ? localBackupLSP : globalBackupLSP);
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

/** Builds the request and computes its path; 0, or -1 after a message. */
int computeRequest(const PathArguments &arguments, LSPRequest &req)
{
    req.type = primaryLSP;
    req.precedence = arguments.PL;
    req.id = arguments.id;
    setBandwidth(req.bw, arguments.OA, arguments.reservation);
    for (const Long node : {arguments.src, -1, arguments.dst}) {
        if (longVecPushBack(&req.path, node) != 0)
            return -1;
    }
    return computePrimaryPath(centralDB, &req);
}

/** Record of the LSP that a computed request describes; null when it cannot be made. */
OwnedLSP makeRecord(LSPRequest &req)
{
    OwnedLSP lsp{DBlspNew()};
    if (!lsp || longVecCopy(&lsp->path, &req.path) != 0)
        return nullptr;
    lsp->id = req.id;
    lsp->precedence = req.precedence;
    lsp->type = primaryLSP;
    std::ranges::copy(req.bw, lsp->bw);
    return lsp;
}

/** Draws up the preemption list, adding the LSP or not; false when the call has failed. */
bool admit(SessionCall &call, LSPRequest &req, bool addLSP, bool preempt, LongList &preemptList)
{
    if (!addLSP && !preempt)
        return true;
    const OwnedLSP lsp = makeRecord(req);
    if (addLSP) {
        if (lsp && DBaddLSP(centralDB, lsp.get(), &preemptList) >= 0)
            return true;
        here.push(CRITICAL, "Impossible to add PRIMARY LSP in %s at line %d");
        call.fail(addDBException);
    } else {
        if (lsp && getpreemptList(centralDB, lsp.get(), &preemptList) >= 0)
            return true;
        here.push(CRITICAL, "Impossible to obtain preemptList in %s at line %d");
        call.fail(routingException);
    }
    return false;
}

/** Drops the repetitions of a sorted list: an LSP may be chosen for more than one reason. */
void dropRepetitions(LongList &list)
{
    const auto ids = inUse(list);
    list.top = static_cast<Long>(std::unique(ids.begin(), ids.end()) - ids.begin());
}

/**
 * Removes the preempted LSPs and reports them in field "lsps"; false when the call has failed. An
 * LSP that cannot be reported is not removed, and `added`, if it is one, goes again.
 */
bool removePreempted(SessionCall &call, std::span<const Long> preempted, jfieldID lsps,
                     std::optional<Long> added)
{
    if (preempted.empty())
        return true;
    const LocalRef<jintArray> ids{call.env, newIntArray(call.env, preempted)};
    if (!ids) {
        if (added)
            static_cast<void>(DBremoveLSP(centralDB, *added));
        return false;
    }
    for (const Long id : preempted) {
        if (DBremoveLSP(centralDB, id) < 0) {
            here.push(CRITICAL, "Impossible to remove LSP in %s at line %d");
            call.fail(addDBException);
            return false;
        }
    }
    call.env->SetObjectField(call.obj, lsps, ids.get());
    return true;
}

} // namespace

JNIEXPORT jintArray JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jnicomputePath(
    JNIEnv *env, jobject obj, jint id, jint src, jint dst, jint /*rrid*/, jint /*rrsrc*/,
    jint /*rrdst*/, jint OA, jint PL, jfloat reservation, jintArray /*colorArray*/, jboolean ADDLSP,
    jboolean PREEMPT)
{
    SessionCall call{env, obj};
    if (!call || !checkLevel(env, PL) || !checkBandwidth(env, "reservation", reservation))
        return nullptr;
    const jfieldID lsps = PREEMPT ? fieldOf(env, obj, "lsps", "[I") : nullptr;
    if (PREEMPT && !lsps)
        return nullptr;
    tarnexConfig.predicateConfig.allowReroute = PREEMPT != JNI_FALSE;

    LSPRequest req{};
    LongList preemptList{};
    const bool isMade = lspRequestInit(&req) == 0;
    const Guard<LSPRequest, lspRequestEnd> requestGuard{isMade ? &req : nullptr};
    if (!isMade || computeRequest({id, src, dst, OA, PL, reservation}, req) < 0) {
        here.push(CRITICAL, "Impossible to compute Path in %s at line %d");
        call.fail(noRouteToHostException);
        return nullptr;
    }
    if (longVecInit(&preemptList, -1) != 0) {
        here.push(CRITICAL, "Impossible to obtain preemptList in %s at line %d");
        call.fail(routingException);
        return nullptr;
    }
    const ListGuard listGuard{&preemptList};
    LocalRef<jintArray> path{env, newIntArray(env, inUse(req.path))};
    const std::optional<Long> added = ADDLSP ? std::optional{req.id} : std::nullopt;
    if (!path || !admit(call, req, ADDLSP != JNI_FALSE, PREEMPT != JNI_FALSE, preemptList))
        return nullptr;
    dropRepetitions(preemptList);
    if (!removePreempted(call, inUse(preemptList), lsps, added))
        return nullptr;
    return path.release();
}
