/* The natives of engines, called without a JVM: every function of it and every allocation fails in
 * turn, and handles are tried that are not live. */

#include <jni.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <utility>
#include <vector>

extern "C" jint JNI_OnLoad(JavaVM *vm, void *reserved);

namespace
{

int newsUntilFault = 0; ///< 0: none fails

/** Sets the allocation that fails, as long as it lives. */
class Fault
{
public:
    explicit Fault(int nth) : before(newsUntilFault) { newsUntilFault = nth; }
    ~Fault() { newsUntilFault = before; }
    Fault(const Fault &) = delete;
    Fault &operator=(const Fault &) = delete;

private:
    const int before;
};

} // namespace

// noinline, or GCC takes the pair of malloc and delete in a caller for a mismatch.
[[gnu::noinline]] void *operator new(std::size_t size)
{
    const int left = newsUntilFault;
    if (left > 0)
        newsUntilFault = left - 1;
    void *const block = left == 1 ? nullptr : std::malloc(size);
    if (!block)
        throw std::bad_alloc{};
    return block;
}
[[gnu::noinline]] void operator delete(void *block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void *block, std::size_t) noexcept { std::free(block); }

namespace
{

/** A JVM with the functions that the natives use, of which the n-th call can be refused. */
class Machine
{
public:
    Machine()
    {
        current = this;
        env.functions = &table;
        machine.functions = &invocations;
    }

    bool load() { return JNI_OnLoad(&machine, nullptr) == JNI_VERSION_1_8; }

    template <class Function>
    Function method(const std::string &name) const
    {
        return reinterpret_cast<Function>(methods.at(name));
    }

    /** Calls the native `call`; what it answered, empty after an exception. */
    std::vector<double> call(jlong handle, jint operation, std::vector<double> arguments)
    {
        using Call =
            jdoubleArray(JNICALL *)(JNIEnv *, jclass, jlong, jint, jdoubleArray, jobjectArray);
        thrown.clear();
        texts.assign(4, "");
        const auto native = method<Call>("call");
        jdoubleArray array = nullptr;
        {
            const Fault fault{refusedNew};
            array =
                native(&env, nullptr, handle, operation, reinterpret_cast<jdoubleArray>(&arguments),
                       reinterpret_cast<jobjectArray>(&texts));
            hadFault = refusedNew > 0 && newsUntilFault == 0;
        }
        EXPECT_EQ(array == nullptr, !thrown.empty());
        return array ? *reinterpret_cast<std::vector<double> *>(array) : std::vector<double>{};
    }

    jlong open(std::vector<double> options)
    {
        using Open = jlong(JNICALL *)(JNIEnv *, jclass, jdoubleArray);
        thrown.clear();
        const auto native = method<Open>("open");
        const Fault fault{refusedNew};
        const jlong handle = native(&env, nullptr, reinterpret_cast<jdoubleArray>(&options));
        hadFault = refusedNew > 0 && newsUntilFault == 0;
        return handle;
    }
    bool close(jlong handle)
    {
        return method<jboolean(JNICALL *)(JNIEnv *, jclass, jlong)>("close")(&env, nullptr, handle);
    }

    std::string thrown;
    std::string classVersion = TARNEX_VERSION;
    int refusedCall = 0; ///< of those that can fail, from 1; 0: none
    int calls = 0;
    int refusedNew = 0;    ///< allocation of a native that fails; 0: none
    bool hadFault = false; ///< whether the last native came to it

private:
    static bool goesOn()
    {
        const bool isRefused = ++current->calls == current->refusedCall;
        if (isRefused)
            current->thrown = "java/lang/OutOfMemoryError";
        return !isRefused;
    }

    static const JNINativeInterface_ table;
    static const JNIInvokeInterface_ invocations;
    static inline Machine *current = nullptr;

    JNIEnv env{};
    JavaVM machine{};
    std::map<std::string, void *> methods;
    std::vector<std::string> texts;
    std::vector<double> result;
    std::string text;
};

const JNIInvokeInterface_ Machine::invocations = [] {
    JNIInvokeInterface_ t{};
    t.GetEnv = [](JavaVM *, void **found, jint) -> jint {
        *found = &current->env;
        return JNI_OK;
    };
    return t;
}();

const JNINativeInterface_ Machine::table = [] {
    JNINativeInterface_ t{};
    t.FindClass = [](JNIEnv *, const char *name) {
        return goesOn() ? reinterpret_cast<jclass>(const_cast<char *>(name)) : nullptr;
    };
    t.GetStaticFieldID = [](JNIEnv *, jclass, const char *name, const char *) {
        return goesOn() ? reinterpret_cast<jfieldID>(const_cast<char *>(name)) : nullptr;
    };
    t.GetStaticObjectField = [](JNIEnv *, jclass, jfieldID) {
        return reinterpret_cast<jobject>(&current->classVersion);
    };
    t.GetStringLength = [](JNIEnv *, jstring) {
        return static_cast<jsize>(current->classVersion.size());
    };
    t.GetStringUTFLength = t.GetStringLength;
    t.GetStringUTFRegion = [](JNIEnv *, jstring, jsize, jsize length, char *to) {
        current->classVersion.copy(to, static_cast<std::size_t>(length));
        to[length] = '\0';
    };
    t.RegisterNatives = [](JNIEnv *, jclass, const JNINativeMethod *list, jint count) -> jint {
        const Fault none{0};
        if (!goesOn())
            return JNI_ERR;
        for (jint i = 0; i < count; ++i)
            current->methods[list[i].name] = list[i].fnPtr;
        return JNI_OK;
    };
    t.ExceptionClear = [](JNIEnv *) { current->thrown.clear(); };
    t.ExceptionCheck = [](JNIEnv *) -> jboolean { return !current->thrown.empty(); };
    t.ThrowNew = [](JNIEnv *, jclass type, const char *message) -> jint {
        const Fault none{0};
        EXPECT_EQ(current->thrown, "") << "while an exception is pending";
        current->thrown = reinterpret_cast<const char *>(type) + std::string(": ") + message;
        return 0;
    };
    t.GetArrayLength = [](JNIEnv *, jarray array) {
        return static_cast<jsize>(reinterpret_cast<std::vector<double> *>(array)->size());
    };
    t.GetDoubleArrayRegion = [](JNIEnv *, jdoubleArray array, jsize, jsize length, jdouble *to) {
        std::copy_n(reinterpret_cast<std::vector<double> *>(array)->data(), length, to);
    };
    t.NewDoubleArray = [](JNIEnv *, jsize length) {
        const Fault none{0};
        current->result.assign(static_cast<std::size_t>(length), 0.0);
        return goesOn() ? reinterpret_cast<jdoubleArray>(&current->result) : nullptr;
    };
    t.SetDoubleArrayRegion = [](JNIEnv *, jdoubleArray, jsize, jsize length, const jdouble *from) {
        std::copy_n(from, length, current->result.data());
    };
    t.NewStringUTF = [](JNIEnv *, const char *from) {
        const Fault none{0};
        current->text = from;
        return goesOn() ? reinterpret_cast<jstring>(&current->text) : nullptr;
    };
    t.SetObjectArrayElement = [](JNIEnv *, jobjectArray array, jsize index, jobject value) {
        const Fault none{0};
        if (goesOn())
            reinterpret_cast<std::vector<std::string> *>(array)->at(
                static_cast<std::size_t>(index)) = *reinterpret_cast<std::string *>(value);
    };
    t.DeleteLocalRef = [](JNIEnv *, jobject) {};
    return t;
}();

/** Operations of the class Native. */
enum Operation { addNode, addLink, removeLink, removeNode, place, placeAll, propose, protect };
constexpr jint counts = 13, lsps = 15, uses = 18, trail = 23;

class EngineNatives : public testing::Test
{
protected:
    EngineNatives() { EXPECT_TRUE(machine.load()); }

    /** Nodes 0 to 3 in a square, LSP 1 of level 5 with a backup on it, room for little more. */
    jlong square()
    {
        std::vector<double> options{1, 8, 1, 1, 1, 0, 0, 1, 0, 0, 0, 0};
        options.resize(options.size() + 64);
        const jlong handle = machine.open(options);
        for (double id = 0; id < 4; ++id)
            machine.call(handle, addNode, {id});
        for (double id = 0; const auto &[from, to] : {std::pair{0, 1}, {1, 3}, {0, 2}, {2, 3}})
            machine.call(handle, addLink, {id++, double(from), double(to), 10});
        machine.call(handle, place, {0, 3, 6, 0, 5, 0, 1, 0});
        machine.call(handle, protect, {1, 1, 2, 0});
        EXPECT_EQ(machine.thrown, "");
        return handle;
    }

    struct Change {
        const char *name;
        jint operation;
        std::vector<double> arguments;
    };
    const std::vector<Change> changes{
        {"place", place, {0, 3, 3, 0, 5, 0, 7, 1, 1}},
        {"preempt", place, {0, 3, 9, 0, 1, 1, 7, 0}},
        {"refused", place, {0, 3, 99, 0, 5, 0, 7, 0}},
        {"many", placeAll, {0, 3, 1, 0, 5, 0, 7, 0, 0, 3, 50, 0, 5, 0, 8, 0}},
        {"protect", protect, {1, 0, 8, 0}},
        {"remove a link", removeLink, {0}},
        {"remove a node", removeNode, {1}},
        {"add a link", addLink, {9, 3, 0, 4}}};

    /** What is in the engine, to compare. */
    std::vector<double> contents(jlong handle)
    {
        std::vector<double> all = machine.call(handle, uses, {});
        for (const double id : machine.call(handle, lsps, {}))
            all.push_back(id);
        return all;
    }

    Machine machine;
};

TEST_F(EngineNatives, LeaveTheEngineWholeWhateverFails)
{
    int faults = 0;
    for (const Change &change : changes) {
        SCOPED_TRACE(change.name);
        const jlong undisturbed = square();
        const std::vector<double> before = contents(undisturbed);
        machine.call(undisturbed, change.operation, change.arguments);
        const std::vector<double> after = contents(undisturbed);
        machine.close(undisturbed);
        bool isFaulty = true;
        for (int nth = 1; isFaulty; ++nth) {
            isFaulty = false;
            for (int Machine::*const refused : {&Machine::refusedCall, &Machine::refusedNew}) {
                const jlong handle = square();
                machine.calls = 0;
                machine.*refused = nth;
                machine.call(handle, change.operation, change.arguments);
                isFaulty |= machine.hadFault ||
                            (machine.refusedCall > 0 && machine.calls >= machine.refusedCall);
                machine.*refused = 0;
                const bool hasThrown = !machine.thrown.empty();
                faults += hasThrown;
                EXPECT_TRUE(!hasThrown || machine.thrown.starts_with("java/lang/OutOfMemoryError"))
                    << machine.thrown;
                const std::vector<double> found = contents(handle);
                // An answer can be lost to the machine when the change is made, but no change to
                // the engine. Of many requests those before the fault are placed.
                EXPECT_TRUE(found == after || (hasThrown && found == before)) << nth;
                EXPECT_TRUE(machine.close(handle));
            }
        }
    }
    EXPECT_GT(faults, 100);
}

TEST_F(EngineNatives, OpenNothingWithoutMemory)
{
    machine.hadFault = true;
    for (machine.refusedNew = 1; machine.hadFault; ++machine.refusedNew) {
        const jlong handle = machine.open(std::vector<double>(76, 1.0));
        EXPECT_EQ(machine.hadFault, machine.thrown.starts_with("java/lang/OutOfMemoryError"));
        EXPECT_EQ(machine.hadFault, !machine.close(handle));
    }
    EXPECT_GT(machine.refusedNew, 3);
}

TEST_F(EngineNatives, RefuseWhatNobodyGaveThem)
{
    const jlong handle = square();
    for (const double odd : {-1.0, 2.0, 1e300, -1e300, std::nan(""), HUGE_VAL}) {
        for (jint operation = -1; operation <= trail + 1; ++operation)
            machine.call(handle, operation, {odd, odd, odd});
        machine.call(handle, placeAll, {0, 3, odd, odd, odd, odd, odd, odd});
    }
    machine.call(handle, counts, {});
    EXPECT_TRUE(machine.close(handle));
    EXPECT_FALSE(machine.close(handle));
    machine.call(handle, counts, {});
    EXPECT_EQ(machine.thrown, "java/lang/IllegalStateException: The engine is closed.");
}

TEST(EngineLibrary, IsForClassesOfItsVersion)
{
    Machine machine;
    machine.classVersion = "0.0.0";
    EXPECT_FALSE(machine.load());
    EXPECT_EQ(machine.thrown,
              "java/lang/UnsatisfiedLinkError: the library is of version " TARNEX_VERSION
              ", the classes are of version 0.0.0");
}

} // namespace
