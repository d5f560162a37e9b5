#include "native/caller.h"

#include <algorithm>

namespace
{

ThingPtr make(Thing thing) { return std::make_shared<Thing>(std::move(thing)); }

/** Room for the elements of an array, even of one without. */
template <class Element>
std::shared_ptr<std::vector<Element>> copyOf(const std::vector<Element> &values)
{
    auto copy = std::make_shared<std::vector<Element>>(values);
    copy->reserve(1);
    return copy;
}

std::string text(const std::vector<jint> &values)
{
    std::string all;
    for (const jint value : values)
        all += std::to_string(value) + " ";
    return all;
}

bool hasField(const std::string &type, const std::string &name, const std::string &signature)
{
    return type == "Engine" &&
           ((name == "lsps" && signature == "[I") || (name == "sessId" && signature == "I"));
}

} // namespace

const JNINativeInterface_ Caller::table = [] {
    JNINativeInterface_ t{};
    t.GetObjectClass = [](JNIEnv *env, jobject object) {
        Caller &caller = of(env);
        caller.enter("GetObjectClass");
        return static_cast<jclass>(
            caller.local(make({.type = "class", .name = caller.read(object).type})));
    };
    t.GetFieldID = [](JNIEnv *env, jclass type, const char *name, const char *signature) {
        static char sessId, lsps;
        Caller &caller = of(env);
        const bool goesOn = caller.enter("GetFieldID");
        const bool found = hasField(caller.read(type).name, name, signature);
        caller.isPending |= !found;
        return !goesOn || !found
                   ? nullptr
                   : reinterpret_cast<jfieldID>(name == std::string("lsps") ? &lsps : &sessId);
    };
    t.GetIntField = [](JNIEnv *env, jobject object, jfieldID) {
        of(env).enter("GetIntField");
        of(env).onGetIntField();
        return of(env).read(object).sessId;
    };
    t.SetIntField = [](JNIEnv *env, jobject object, jfieldID, jint value) {
        of(env).enter("SetIntField");
        of(env).read(object).sessId = value;
    };
    t.SetObjectField = [](JNIEnv *env, jobject object, jfieldID, jobject value) {
        of(env).enter("SetObjectField");
        of(env).read(value);
        of(env).read(object).lsps = *reinterpret_cast<ThingPtr *>(value);
    };
    t.FindClass = [](JNIEnv *env, const char *name) {
        Caller &caller = of(env);
        const bool goesOn = caller.enter("FindClass");
        caller.onFindClass();
        return static_cast<jclass>(goesOn ? caller.local(make({.type = "class", .name = name}))
                                          : nullptr);
    };
    t.ThrowNew = [](JNIEnv *env, jclass type, const char *text) -> jint {
        Caller &caller = of(env);
        caller.enter("ThrowNew");
        const std::string &name = caller.read(type).name;
        caller.thrown = name.substr(name.rfind('/') + 1) + (text ? std::string(": ") + text : "");
        caller.isPending = true;
        return 0;
    };
    t.GetArrayLength = [](JNIEnv *env, jarray array) {
        of(env).enter("GetArrayLength");
        const Thing &thing = of(env).read(array);
        return static_cast<jsize>(
            std::max({thing.ints.size(), thing.floats.size(), thing.elements.size()}));
    };
    t.GetObjectArrayElement = [](JNIEnv *env, jobjectArray array, jsize index) {
        of(env).enter("GetObjectArrayElement");
        const ThingPtr &element = of(env).read(array).elements.at(static_cast<std::size_t>(index));
        return element ? of(env).local(element) : nullptr;
    };
    t.SetObjectArrayElement = [](JNIEnv *env, jobjectArray array, jsize index, jobject value) {
        of(env).enter("SetObjectArrayElement");
        if (of(env).read(value).type != "[I")
            of(env).misuse.emplace_back("an element of another class");
        of(env).read(array).elements.at(static_cast<std::size_t>(index)) =
            *reinterpret_cast<ThingPtr *>(value);
    };
    t.NewObjectArray = [](JNIEnv *env, jsize length, jclass type, jobject) {
        if (!of(env).enter("NewObjectArray"))
            return jobjectArray{};
        Thing array{.type = "[" + of(env).read(type).name};
        array.elements.resize(static_cast<std::size_t>(length));
        return static_cast<jobjectArray>(of(env).local(make(std::move(array))));
    };
    t.NewIntArray = [](JNIEnv *env, jsize length) {
        if (!of(env).enter("NewIntArray"))
            return jintArray{};
        Thing array{.type = "[I"};
        array.ints.resize(static_cast<std::size_t>(length));
        return static_cast<jintArray>(of(env).local(make(std::move(array))));
    };
    t.SetIntArrayRegion = [](JNIEnv *env, jintArray array, jsize start, jsize length,
                             const jint *values) {
        of(env).enter("SetIntArrayRegion");
        std::vector<jint> &ints = of(env).read(array).ints;
        if (start < 0 || static_cast<std::size_t>(start + length) > ints.size())
            of(env).misuse.emplace_back("a region outside its array");
        else
            std::copy_n(values, length, ints.begin() + start);
    };
    t.GetIntArrayElements = [](JNIEnv *env, jintArray array, jboolean *) {
        return of(env).pin("GetIntArrayElements", array, &Thing::ints);
    };
    t.ReleaseIntArrayElements = [](JNIEnv *env, jintArray array, jint *elements, jint mode) {
        of(env).unpin(array, elements, mode, &Thing::ints);
    };
    t.GetFloatArrayElements = [](JNIEnv *env, jfloatArray array, jboolean *) {
        return of(env).pin("GetFloatArrayElements", array, &Thing::floats);
    };
    t.ReleaseFloatArrayElements = [](JNIEnv *env, jfloatArray array, jfloat *elements, jint mode) {
        of(env).unpin(array, elements, mode, &Thing::floats);
    };
    t.DeleteLocalRef = [](JNIEnv *env, jobject reference) {
        if (of(env).locals.erase(reinterpret_cast<ThingPtr *>(reference)) != 1)
            of(env).misuse.emplace_back("a reference deleted that is none of the call's");
    };
    return t;
}();

Caller::Caller() : JNIEnv{&table} {}

jobject Caller::add(References &references, ThingPtr thing)
{
    auto reference = std::make_unique<ThingPtr>(std::move(thing));
    ThingPtr *const key = reference.get();
    references[key] = std::move(reference);
    return reinterpret_cast<jobject>(key);
}

jintArray Caller::ints(const std::vector<jint> &values)
{
    return static_cast<jintArray>(argument({.type = "[I", .ints = values}));
}

jfloatArray Caller::floats(const std::vector<jfloat> &values)
{
    return static_cast<jfloatArray>(argument({.type = "[F", .floats = values}));
}

jobjectArray Caller::rows(const std::vector<std::vector<jfloat>> &values)
{
    Thing array{.type = "[[F"};
    for (const auto &row : values)
        array.elements.push_back(make({.type = "[F", .floats = row}));
    return static_cast<jobjectArray>(argument(std::move(array)));
}

void Caller::refuse(const std::string &function, int nth)
{
    refusedName = function;
    refusedCall = nth;
    calls = 0;
}

ThingPtr Caller::finish(jobject returned)
{
    ThingPtr result;
    const auto found = locals.find(reinterpret_cast<ThingPtr *>(returned));
    if (found != locals.end()) {
        result = *found->second;
        locals.erase(found);
    } else if (returned) {
        misuse.emplace_back("a result that is no local reference");
    }
    if (!locals.empty())
        misuse.emplace_back("references left behind");
    if (!pins.empty())
        misuse.emplace_back("elements not released");
    if (returned && isPending)
        misuse.emplace_back("a result beside an exception");
    isPending = false;
    return result;
}

std::string Caller::outcome(jobject engine, jobject returned)
{
    const ThingPtr result = finish(returned);
    std::string all = thrown;
    if (result) {
        all += text(result->ints);
        for (const ThingPtr &element : result->elements)
            all += text(element->ints) + "| ";
    }
    if (const ThingPtr preempted = at(engine).lsps)
        all += "lsps " + text(preempted->ints);
    return all;
}

bool Caller::enter(const char *function)
{
    if (isPending)
        misuse.push_back(std::string(function) + " with an exception pending");
    const bool isRefused = refusedName == function && ++calls == refusedCall;
    isPending |= isRefused;
    return !isRefused;
}

Thing &Caller::read(jobject reference)
{
    auto *const key = reinterpret_cast<ThingPtr *>(reference);
    if (!arguments.contains(key) && !locals.contains(key)) {
        static Thing nothing;
        misuse.emplace_back("a reference that leads nowhere");
        return nothing;
    }
    return **key;
}

template <class Element>
Element *Caller::pin(const char *function, jarray array, std::vector<Element> Thing::*values)
{
    Thing &thing = read(array);
    if (!enter(function))
        return nullptr;
    const auto copy = copyOf(thing.*values);
    pins[copy->data()] = {&thing, copy};
    return copy->data();
}

template <class Element>
void Caller::unpin(jarray array, Element *elements, jint mode, std::vector<Element> Thing::*values)
{
    const auto found = pins.find(elements);
    if (found == pins.end() || found->second.first != &read(array) || mode != 0) {
        misuse.emplace_back("elements released that were not taken, or not with mode 0");
        return;
    }
    std::copy_n(elements, (read(array).*values).size(), (read(array).*values).begin());
    pins.erase(found);
}
