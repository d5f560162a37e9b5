/*
 * The native method for backup paths of org.kestro.repository.TARNEX.JNITARNEX (unit
 * "jni_interface").
 */
#include "admission/placement.h"
#include "common/records.h"
#include "common/setup.h"
#include "computation/backup/driver.h"
#include "contract.h"
#include "database/books/lookup.h"
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
    std::span<const jint> ids; ///< for the backups, if they are to be added
    jint backupType;
    PlacementGoal goal;

    bool isGlobal() const { return backupType == 1; }
};

/** The class of int arrays; null with an exception pending. */
jclass intArrayClass(JNIEnv *env)
{
    constexpr jsize anyLength = 100;
    const LocalRef<jintArray> sample{env, env->NewIntArray(anyLength)};
    return sample ? env->GetObjectClass(sample.get()) : nullptr;
}

bool storePath(JNIEnv *env, jobjectArray paths, jsize index, const LongList &path)
{
    const LocalRef<jintArray> element{env, newIntArray(env, inUse(path))};
    if (element)
        env->SetObjectArrayElement(paths, index, element.get());
    return static_cast<bool>(element);
}

/** Tells on standard error, in Latin-1, why a backup found no room on the links of its path. */
void describeRefusal(Long primary, const LSPRequest &backup)
{
    std::fprintf(
        stderr, "Backup global non ajout\xE9 pour primaire %d, valeur de la bande passante: %f: \n",
        primary, backup.bw[0]);
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

/** Does with backup `j` what was asked; false, after its messages, when the call has to end. */
bool placeBackup(const BackupArguments &arguments, BackupPlacement &placement, LSPRequest &backup,
                 std::size_t j)
{
    const bool isAdded = arguments.goal == PlacementGoal::lsp;
    std::fill(backup.bw + NBOA, std::end(backup.bw), 0.0);
    switch (placement.admit(backup, isAdded ? arguments.ids[j] : -1, arguments.goal)) {
    case Placement::notListed:
        here.push(CRITICAL, "Impossible to obtain preemptList in %s at line %d");
        std::fputs("Can't obtain preemptList \n", stderr);
        return true;
    case Placement::notAdded:
        here.push(CRITICAL, "Impossible to add BACKUP LSP in %s at line %d");
        describeRefusal(arguments.primarylspId, backup);
        return false;
    default:
        return true;
    }
}

/** Stores the paths in the result and does with each backup what was asked; false: call failed. */
bool handleBackups(SessionCall &call, const BackupArguments &arguments,
                   std::span<LSPRequest> backups, BackupPlacement &placement, jobjectArray paths)
{
    for (std::size_t j = 0; j < backups.size(); ++j) {
        if (!storePath(call.env, paths, static_cast<jsize>(j), backups[j].path))
            return false;
        if (!placeBackup(arguments, placement, backups[j], j)) {
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

/** Whether there is an id for every backup that is to be added. */
bool checkIds(SessionCall &call, const BackupArguments &arguments, Long nbBackups)
{
    const auto given = static_cast<Long>(arguments.ids.size());
    return arguments.goal != PlacementGoal::lsp || given >= nbBackups ||
           call.refuse("backuplspIds needs %d elements or more, but has %d", nbBackups, given);
}

/** Turns computed requests into the result of the call; null when it has failed. */
jobjectArray answer(SessionCall &call, const BackupArguments &arguments, LSPRequestList &req,
                    jclass pathClass)
{
    DBLabelSwitchedPath *primary = DBgetLSP(centralDB, arguments.primarylspId);
    if (!primary) {
        here.push(CRITICAL, "Not able to find primary LSP (id = %ld) in %s at line %d",
                  long{arguments.primarylspId});
        return nullptr;
    }
    BackupPlacement placement{*centralDB, *primary,
                              arguments.isGlobal() ? globalBackupLSP : localBackupLSP};
    if (!placement) {
        here.push(CRITICAL, "Impossible to add BACKUP LSP in %s at line %d");
        call.fail(addDBException);
        return nullptr;
    }
    if (arguments.backupType == 0 && primary->path.top - 1 != req.size)
        std::fputs("Pas assez de lsps de backups locaux pour la taille du lsp!\n", stderr);

    LocalRef<jobjectArray> paths{call.env, call.env->NewObjectArray(req.size, pathClass, nullptr)};
    const std::span backups{req.cont, static_cast<std::size_t>(req.size)};
    if (!paths || !handleBackups(call, arguments, backups, placement, paths.get()))
        return nullptr;
    return paths.release();
}

} // namespace

JNIEXPORT jobjectArray JNICALL Java_org_kestro_repository_TARNEX_JNITARNEX_jnicomputeBackupPath(
    JNIEnv *env, jobject obj, jint primarylspId, jintArray backuplspIds, jint backupType,
    jboolean ADDLSP, jboolean PREEMPT)
{
    SessionCall call{env, obj};
    if (!call || (ADDLSP && !checkArray(call, "backuplspIds", backuplspIds, 0)))
        return nullptr;
    const LocalRef<jclass> pathClass{env, intArrayClass(env)};
    const IntElements ids{env, pathClass ? backuplspIds : nullptr};
    if (!pathClass || !ids)
        return nullptr;
    const BackupArguments arguments{primarylspId, ids.values(), backupType,
                                    goalOf(ADDLSP, PREEMPT)};
    bool &allowReroute = tarnexConfig.predicateConfig.allowReroute;
    const bool allowedBefore = allowReroute;
    allowReroute = PREEMPT != JNI_FALSE;

    LSPRequestList req{};
    const bool isMade = lspRequestListInit(&req, -1) == 0;
    const Guard<LSPRequestList, lspRequestListEnd> guard{isMade ? &req : nullptr};
    if (compute(arguments, req) != 0) {
        call.fail(noRouteToHostException);
        return nullptr;
    }
    if (!checkIds(call, arguments, req.size)) {
        allowReroute = allowedBefore;
        return nullptr;
    }
    return answer(call, arguments, req, pathClass.get());
}
