/*
 * The binding's header alone declares every exported function and the session table, each with its
 * agreed type: this file is tested by being compiled and linked.
 */
#include "jni_interface.h"

#define METHOD(name) Java_org_kestro_repository_TARNEX_JNITARNEX_jni##name

using Env = JNIEnv *;

struct Agreed {
    void (*initTarnex)(Env, jobject, jint, jint, jboolean, jboolean, jboolean, jfloat, jfloat,
                       jfloat, jfloat, jfloat, jfloat, jfloat, jobjectArray);
    void (*killTarnex)(Env, jobject);
    void (*printTarnexDB)(Env, jobject);
    void (*addNode)(Env, jobject, jint);
    void (*addLink)(Env, jobject, jint, jint, jint, jint, jfloatArray, jobjectArray, jobjectArray,
                    jobjectArray, jobjectArray);
    void (*addLSP)(Env, jobject, jint, jintArray, jint, jint, jfloat);
    void (*addBackupLSP)(Env, jobject, jint, jint, jintArray, jint, jint, jfloat, jboolean);
    void (*removeLSP)(Env, jobject, jint);
    void (*removeNode)(Env, jobject, jint);
    void (*removeLink)(Env, jobject, jint, jint);
    jintArray (*computePath)(Env, jobject, jint, jint, jint, jint, jint, jint, jint, jint, jfloat,
                             jintArray, jboolean, jboolean);
    jobjectArray (*computeBackupPath)(Env, jobject, jint, jintArray, jint, jboolean, jboolean);
    SessionItem *(*sessions)[128];
    int *nbSessions, *lastSession, *currentSessId;
    int (*init)();
    int (*saveCntx)(int sessId);
    int (*loadCntx)(Env, jobject);
    DataBase *SessionItem::*centralDB;
    TARNEXConfig SessionItem::*tarnexConfig;
    ErrorList SessionItem::*errorManager;
};

extern const Agreed agreed;
const Agreed agreed{METHOD(initTarnex),
                    METHOD(killTarnex),
                    METHOD(printTarnexDB),
                    METHOD(addNode),
                    METHOD(addLink),
                    METHOD(addLSP),
                    METHOD(addBackupLSP),
                    METHOD(removeLSP),
                    METHOD(removeNode),
                    METHOD(removeLink),
                    METHOD(computePath),
                    METHOD(computeBackupPath),
                    &sessions,
                    &nbSessions,
                    &lastSession,
                    &currentSessId,
                    init,
                    saveCntx,
                    loadCntx,
                    &SessionItem::centralDB,
                    &SessionItem::tarnexConfig,
                    &SessionItem::errorManager};
