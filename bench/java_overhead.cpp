/**
 * Prints what a primary request through Java costs beyond the call of the core, beside what it may
 * cost: the same requests on the same network, by turns from Java and from here, first on networks
 * with 5 links per node, then on rings with their long paths. All figures are medians over the
 * turns, those of the overhead over the differences within a turn. The native method is the one
 * linked into this program, so both sides find the same session.
 */
#include "common/setup.h"
#include "computation/primary/driver.h"
#include "jvm/jvm.h"
#include "measure.h"
#include "support/native_calls.h"
#include "support/random_network.h"

#include <cstdio>
#include <numeric>

namespace
{

using namespace property;

constexpr std::size_t nbRequests = 20;
constexpr int warmUpRounds = 500;
constexpr double secondsPerNetwork = 6.0;

/** Makes a request as the binding does and hands its path to `use`. */
template <class Use>
void computeInCore(std::size_t id, jint src, jint dst, Use use)
{
    LSPRequest req{};
    require(lspRequestInit(&req) == 0, "no memory for a request");
    const Guard<LSPRequest, lspRequestEnd> guard{&req};
    req.type = primaryLSP;
    req.id = static_cast<Long>(id);
    req.bw[0] = 1.0;
    for (const Long node : {src, -1, dst})
        require(longVecPushBack(&req.path, node) == 0, "no memory for a path");
    require(computePrimaryPath(centralDB, &req) == 0, "no path was found");
    use(inUse(req.path));
}

/** A session with a network, and requests on it. */
class Subject
{
public:
    Subject(int nodes, int linksPerNode) : rng(static_cast<unsigned>(nodes))
    {
        const jobjectArray prices = rows({floats(std::vector<jfloat>(MAXPL))});
        CALL(initTarnex, 1, MAXPL, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, prices);
        const NetworkPlan plan = randomNetwork(rng, nodes, linksPerNode, 1);
        require(centralDB && addNetwork(centralDB, plan) == 0, "no network");
        for (std::size_t i = 0; i < nbRequests; ++i) {
            src.push_back(randomInt(rng, nodes));
            dst.push_back((src.back() + 1 + randomInt(rng, nodes - 1)) % nodes);
        }
        javaSrc = newIntArray(env, src);
        javaDst = newIntArray(env, dst);
        forget();
    }
    ~Subject() { CALL(killTarnex); }
    Subject(const Subject &) = delete;
    Subject &operator=(const Subject &) = delete;

    /** Makes all requests on both sides and notes the times; checks the paths at first. */
    void run()
    {
        for (std::size_t i = 0; i < nbRequests; ++i) {
            core[i].push_back(
                secondsOf([&] { computeInCore(i, src[i], dst[i], [](std::span<Long>) {}); }));
        }
        const LocalRef<jobject> paths{
            env, env->CallStaticObjectMethod(caller, compute, engine, javaSrc, javaDst, took)};
        require(!env->ExceptionCheck(), "a request from Java failed");
        std::vector<jlong> nanoseconds(nbRequests);
        env->GetLongArrayRegion(took, 0, nbRequests, nanoseconds.data());
        for (std::size_t i = 0; i < nbRequests; ++i) {
            java[i].push_back(1e-9 * static_cast<double>(nanoseconds[i]));
            overhead[i].push_back(java[i].back() - core[i].back());
        }
        if (pathNodes == 0)
            compare(static_cast<jobjectArray>(paths.get()));
    }

    void forget()
    {
        for (Times *times : {&core, &java, &overhead})
            times->assign(nbRequests, {});
    }

    void print(int nodes) const
    {
        const double length = static_cast<double>(pathNodes) / nbRequests;
        std::printf("%6d %11.1f %10.2f %10.2f %12.2f %9.2f\n", nodes, length, meanOfMedians(core),
                    meanOfMedians(java), meanOfMedians(overhead), 1.0 + 0.005 * length);
    }

private:
    using Times = std::vector<std::vector<double>>; ///< seconds of each request

    static double meanOfMedians(const Times &times)
    {
        return std::transform_reduce(times.begin(), times.end(), 0.0, std::plus{},
                                     medianMicroseconds) /
               nbRequests;
    }

    void compare(jobjectArray paths)
    {
        for (std::size_t i = 0; i < nbRequests; ++i) {
            const LocalRef<jintArray> path{env, static_cast<jintArray>(env->GetObjectArrayElement(
                                                    paths, static_cast<jsize>(i)))};
            computeInCore(i, src[i], dst[i], [&](std::span<const Long> expected) {
                require(std::ranges::equal(valuesOf(path.get()), expected), "paths differ");
                pathNodes += expected.size();
            });
        }
    }

    Rng rng;
    std::vector<jint> src, dst;
    const jobject engine = newObject("org/kestro/repository/TARNEX/JNITARNEX");
    const jclass caller = env->FindClass("PathCalls");
    const jmethodID compute = env->GetStaticMethodID(
        caller, "compute", "(Lorg/kestro/repository/TARNEX/JNITARNEX;[I[I[J)[[I");
    const jlongArray took = env->NewLongArray(nbRequests);
    jintArray javaSrc, javaDst;
    Times core, java, overhead;
    std::size_t pathNodes = 0; ///< of all paths together
};

/** Lets Java call the native method of this program instead of that of the library. */
bool exchangeMethod()
{
    char name[] = "jnicomputePath", descriptor[] = "(IIIIIIIIF[IZZ)[I";
    const JNINativeMethod method{
        name, descriptor,
        reinterpret_cast<void *>(&Java_org_kestro_repository_TARNEX_JNITARNEX_jnicomputePath)};
    const LocalRef<jclass> type{env, env->FindClass("org/kestro/repository/TARNEX/JNITARNEX")};
    return type && env->RegisterNatives(type.get(), &method, 1) == 0;
}

void printRow(int nodes, int linksPerNode)
{
    require(env->PushLocalFrame(64) == 0, "no memory in the JVM");
    Subject subject{nodes, linksPerNode};
    for (int round = 0; round < warmUpRounds; ++round)
        subject.run();
    subject.forget();
    const auto end = Clock::now() + std::chrono::duration<double>(secondsPerNetwork);
    while (Clock::now() < end)
        subject.run();
    subject.print(nodes);
    env->PopLocalFrame(nullptr);
}

} // namespace

int main()
{
    require(startJvm({"-Djava.class.path=" CLASS_PATH, "-Djava.library.path=" LIBRARY_PATH}) &&
                exchangeMethod(),
            "no JVM");
    std::printf("%6s %11s %10s %10s %12s %9s\n", "nodes", "path nodes", "core, us", "Java, us",
                "overhead, us", "limit, us");
    for (const auto &[nodes, linksPerNode] : {std::pair{100, 5}, {1000, 5}, {100, 1}, {1000, 1}})
        printRow(nodes, linksPerNode);
}
