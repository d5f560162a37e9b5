/*
 * The native method for backup paths of org.kestro.repository.TARNEX.JNITARNEX (unit
 * "jni_interface").
 */
#include "admission/admission.h"
#include "common/records.h"
#include "common/setup.h"
#include "computation/backup/driver.h"
#include "error/report.h"
#include "jni_support.h"
#include "session_call.h"

#include <org_kestro_repository_TARNEX_JNITARNEX.h>

#include <algorithm>
#include <cstdio>

namespace
{

constexpr Unit here{"jni_interface"};

/** What a backup path call asks for. */
struct BackupArguments {
    jint primarylspId;
    jintArray backuplspIds;
    jint backupType;
    bool addLSP;
    bool preempt;

    bool isGlobal() const { return backupType == 1; }
};

/** New array of int arrays, one null element per backup; null with an exception pending. */
jobjectArray newPaths(JNIEnv *env, Long count)
{
    const LocalRef<jintArray> sample{env, env->NewIntArray(0)};
    if (!sample)
        return nullptr;
    const LocalRef<jclass> elementClass{env, env->GetObjectClass(sample.get())};
    return env->NewObjectArray(count, elementClass.get(), nullptr);
}

bool storePath(JNIEnv *env, jobjectArray paths, Long index, const LongList &path)
{
    const LocalRef<jintArray> element{env, newIntArray(env, inUse(path))};
    if (!element || env->ExceptionCheck())
        return false;
    env->SetObjectArrayElement(paths, index, element.get());
    return !env->ExceptionCheck();
}

/** Tells on standard error, in Latin-1, why a backup found no room on the links of its path. */
void describeRefusal(const DBLabelSwitchedPath &backup)
{
    std::fprintf(
        stderr, "Backup global non ajout\xE9 pour primaire %d, valeur de la bande passante: %f: \n",
        backup.primID, backup.bw[0]);
    const auto path = inUse(backup.path);
    for (std::size_t u = 0; u + 1 < path.size(); ++u) {
        const DBLink *link = linkAt(centralDB->linkTab, path[u], path[u + 1]);
        if (!link)
            continue;
        std::fprintf(stderr,
                     "Valeur de la capacit\xE9 du lien %d - %d: %f, Valeur de la bande passante "
                     "r\xE9serv\xE9"
                     "e P0: %f, PetB0: %f\n",
                     path[u], path[u + 1], link->state.cap[0], link->state.pbw[0][0],
                     link->state.rbw[0][0]);
    }
    std::fputs(" \n", stderr);
}

/** Adds one backup or draws up its preemption list; 0, or -1 when the call has to end. */
int admit(const BackupArguments &arguments, DBLabelSwitchedPath &backup)
{
    if (!arguments.addLSP && !arguments.preempt)
        return 0;
    LongVec rerouting{};
    if (longVecInit(&rerouting, -1) != 0)
        return -1;
    const Guard<LongVec, longVecEnd> guard{&rerouting};
    if (arguments.addLSP)
        return DBaddLSP(centralDB, &backup, &rerouting) < 0 ? -1 : 0;
    if (getpreemptList(centralDB, &backup, &rerouting) < 0) {
        here.push(CRITICAL, "Impossible to obtain preemptList in %s at line %d");
        std::fputs("Can't obtain preemptList \n", stderr);
    }
    return 0;
}

/** Fills the record that every backup is added from. */
int fillRecord(LSPRequest &req, Long id, const BackupArguments &arguments, DBLabelSwitchedPath &lsp)
{
    lsp.id = id;
    std::copy_n(req.bw, NBOA, lsp.bw);
    lsp.precedence = 0;
    lsp.type = arguments.isGlobal() ? globalBackupLSP : localBackupLSP;
    lsp.primID = arguments.primarylspId;
    lsp.noContentionId = -1;
    lsp.path.top = 0;
    return longVecCopy(&lsp.path, &req.path);
}

/** Stores the paths in the result and does with each backup what was asked; false: call failed. */
bool handleBackups(SessionCall &call, const BackupArguments &arguments,
                   std::span<LSPRequest> backups, std::span<const Long> ids,
                   DBLabelSwitchedPath &lsp, jobjectArray paths)
{
    for (std::size_t j = 0; j < backups.size(); ++j) {
        if (!storePath(call.env, paths, static_cast<jsize>(j), backups[j].path))
            return false;
        if (fillRecord(backups[j], ids[j], arguments, lsp) != 0 || admit(arguments, lsp) != 0) {
            here.push(CRITICAL, "Impossible to add BACKUP LSP in %s at line %d");
            describeRefusal(lsp);
            call.fail(addDBException);
            return false;
        }
    }
    return true;
}

/** Computes the backups; 0, or -1 after a message. */
int compute(const BackupArguments &arguments, LSPRequestList &req)
{
    const BackupType type = arguments.isGlobal() ? GLOBAL_BACKUP : LOCAL_BACKUP;
    if (req.cont && computeBackup(centralDB, &req, arguments.primarylspId, type) >= 0)
        return 0;
    if (arguments.isGlobal())
        return here.fail("Impossible to compute global backup paths in %s at line %d");
    return here.fail("Impossible to compute local backup paths in %s at line %d");
}

/** Turns computed requests into the result of the call; null when it has failed. */
jobjectArray answer(SessionCall &call, const BackupArguments &arguments, const LSPRequestList &req)
{
    DBLabelSwitchedPath *primary = DBgetLSP(centralDB, arguments.primarylspId);
    if (!primary) {
        here.push(CRITICAL, "Not able to find primary LSP (id = %ld) in %s at line %d",
                  long{arguments.primarylspId});
        return nullptr;
    }
    const Owned<DBLabelSwitchedPath, DBlspDestroy> lsp{DBlspNew()};
    const Owned<LongList, longVecDestroy> ids{longVecNew(-1)};
    if (!lsp || longVecCopy(&lsp->primPath, &primary->path) != 0 || !ids ||
        readInts(call.env, arguments.backuplspIds, req.size, *ids) != 0) {
        here.push(CRITICAL, "Impossible to add BACKUP LSP in %s at line %d");
        call.fail(addDBException);
        return nullptr;
    }
    if (arguments.backupType == 0 && primary->path.top - 1 != req.size)
        std::fputs("Pas assez de lsps de backups locaux pour la taille du lsp!\n", stderr);

    LocalRef<jobjectArray> paths{call.env, newPaths(call.env, req.size)};
    const std::span backups{req.cont, static_cast<std::size_t>(req.size)};
    if (!paths || !handleBackups(call, arguments, backups, inUse(*ids), *lsp, paths.get()))
        return nullptr;
    return paths.release();
}

} // namespace

JNIEXPORT jobjectArray JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jnicomputeBackupPath(
    JNIEnv *env, jobject obj, jint primarylspId, jintArray backuplspIds, jint backupType,
    jboolean ADDLSP, jboolean PREEMPT)
{
    SessionCall call{env, obj};
    if (!call || !checkArray(env, "backuplspIds", backuplspIds, 0))
        return nullptr;
    const BackupArguments arguments{primarylspId, backuplspIds, backupType, ADDLSP != JNI_FALSE,
                                    PREEMPT != JNI_FALSE};
    bool &allowReroute = tarnexConfig.predicateConfig.allowReroute;
    const bool allowedBefore = allowReroute;
    allowReroute = arguments.preempt;

    LSPRequestList req{};
    const bool isMade = lspRequestListInit(&req, -1) == 0;
    const Guard<LSPRequestList, lspRequestListEnd> guard{isMade ? &req : nullptr};
    if (compute(arguments, req) != 0) {
        call.fail(noRouteToHostException);
        return nullptr;
    }
    if (!checkArray(env, "backuplspIds", backuplspIds, req.size)) {
        allowReroute = allowedBefore;
        return nullptr;
    }
    return answer(call, arguments, req);
}
