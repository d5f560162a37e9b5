/**
 * A caller that is no JVM: a JNIEnv whose table has the eighteen functions that the native methods
 * may use, and null everywhere else. It keeps count of references and of arrays whose elements are
 * out, notes what a JVM would not forgive, and can refuse the n-th call of a function.
 */
#ifndef TARNEX_TESTS_NATIVE_CALLER_H
#define TARNEX_TESTS_NATIVE_CALLER_H

#include <jni.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/** An object, an array or a class; what does not apply is empty. */
struct Thing {
    std::string type{}; ///< its class; "class" for a class
    std::string name{}; ///< of a class
    std::vector<jint> ints{};
    std::vector<jfloat> floats{};
    std::vector<std::shared_ptr<Thing>> elements{};
    jint sessId = -1;
    std::shared_ptr<Thing> lsps{};
};
using ThingPtr = std::shared_ptr<Thing>;

class Caller : public JNIEnv
{
public:
    Caller();

    /** @name References that the caller owns, for arguments */
    ///@{
    jobject object(const std::string &type) { return argument({.type = type}); }
    jintArray ints(const std::vector<jint> &values);
    jfloatArray floats(const std::vector<jfloat> &values);
    jobjectArray rows(const std::vector<std::vector<jfloat>> &values);
    ///@}

    static Thing &at(jobject reference) { return **reinterpret_cast<ThingPtr *>(reference); }

    /** Lets the n-th call of that function from here on fail as in a JVM. */
    void refuse(const std::string &function, int nth);
    /** Lets every call succeed again; whether one has failed. */
    bool endRefusal() { return std::exchange(refusedName, "") != "" && calls >= refusedCall; }

    /** Ends a call: what it returned is taken, deleted and handed out; null for a null. */
    ThingPtr finish(jobject returned = nullptr);
    /** Ends a call on `engine`: what it threw, returned and stored in field "lsps", as text. */
    std::string outcome(jobject engine, jobject returned);

    std::string thrown;              ///< by the last call: class without its package, text
    std::vector<std::string> misuse; ///< what a JVM would not forgive
    std::function<void()> onFindClass = [] {};
    std::function<void()> onGetIntField = [] {};

private:
    static const JNINativeInterface_ table;
    static Caller &of(JNIEnv *env) { return static_cast<Caller &>(*env); }

    jobject argument(Thing thing) { return add(arguments, std::make_shared<Thing>(thing)); }
    jobject local(ThingPtr thing) { return add(locals, std::move(thing)); }
    /** Opens every function: whether it goes on. */
    bool enter(const char *function);
    Thing &read(jobject reference);
    template <class Element>
    Element *pin(const char *function, jarray array, std::vector<Element> Thing::*values);
    template <class Element>
    void unpin(jarray array, Element *elements, jint mode, std::vector<Element> Thing::*values);

    using References = std::map<ThingPtr *, std::unique_ptr<ThingPtr>>;
    static jobject add(References &references, ThingPtr thing);

    References arguments, locals;
    std::map<void *, std::pair<Thing *, std::shared_ptr<void>>> pins;
    bool isPending = false;
    std::string refusedName;
    int refusedCall = 0, calls = 0;
};

#endif
