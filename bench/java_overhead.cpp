/**
 * Prints what a primary request through Java costs beyond the call of the core, for an Engine
 * beyond that of the C++ library, beside what it may cost: the same requests on the same network,
 * by turns from Java and from here, first on networks with 5 links per node, then on rings with
 * their long paths. All figures are medians over the turns, those of the overhead over the
 * differences within a turn. The native method is the one linked into this program, so both sides
 * find the same session.
 */
#include "common/setup.h"
#include "computation/primary/driver.h"
#include "jvm/jvm.h"
#include "measure.h"
#include "support/native_calls.h"
#include "support/random_network.h"

#include <tarnex/engine.h>

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

/** The same requests on both sides, by turns, and how long they took. */
class Comparison
{
public:
    Comparison(Rng &rng, int nodes)
    {
        for (std::size_t i = 0; i < nbRequests; ++i) {
            src.push_back(randomInt(rng, nodes));
            dst.push_back((src.back() + 1 + randomInt(rng, nodes - 1)) % nodes);
        }
        javaSrc = newIntArray(env, src);
        javaDst = newIntArray(env, dst);
        forget();
    }
    virtual ~Comparison() = default;
    Comparison(const Comparison &) = delete;
    Comparison &operator=(const Comparison &) = delete;

    /** Makes all requests on both sides and notes the times. */
    void run()
    {
        for (std::size_t i = 0; i < nbRequests; ++i)
            core[i].push_back(secondsOf([&] { callCore(i); }));
        callJava();
        require(!env->ExceptionCheck(), "a request from Java failed");
        std::vector<jlong> nanoseconds(nbRequests);
        env->GetLongArrayRegion(took, 0, nbRequests, nanoseconds.data());
        for (std::size_t i = 0; i < nbRequests; ++i) {
            java[i].push_back(1e-9 * static_cast<double>(nanoseconds[i]));
            overhead[i].push_back(java[i].back() - core[i].back());
        }
    }

    void forget()
    {
        for (Times *times : {&core, &java, &overhead})
            times->assign(nbRequests, {});
    }

    void print(const char *side, int nodes) const
    {
        const double length = static_cast<double>(pathNodes) / nbRequests;
        std::printf("%-10s %6d %11.1f %10.2f %10.2f %12.2f %9.2f\n", side, nodes, length,
                    meanOfMedians(core), meanOfMedians(java), meanOfMedians(overhead),
                    1.0 + 0.005 * length);
    }

protected:
    virtual void callCore(std::size_t i) = 0;
    /** Has Java make all requests and note into `took`; checks the paths at first. */
    virtual void callJava() = 0;

    std::vector<jint> src, dst;
    jintArray javaSrc, javaDst;
    const jclass caller = env->FindClass("PathCalls");
    const jlongArray took = env->NewLongArray(nbRequests);
    std::size_t pathNodes = 0; ///< of all paths together

private:
    using Times = std::vector<std::vector<double>>; ///< seconds of each request

    static double meanOfMedians(const Times &times)
    {
        return std::transform_reduce(times.begin(), times.end(), 0.0, std::plus{},
                                     medianMicroseconds) /
               nbRequests;
    }

    Times core, java, overhead;
};

/** The native method against the call of the core. */
class OfSession : public Comparison
{
public:
    OfSession(Rng &rng, const NetworkPlan &plan)
        : Comparison(rng, static_cast<int>(plan.nodes.size()))
    {
        const jobjectArray prices = rows({floats(std::vector<jfloat>(MAXPL))});
        CALL(initTarnex, 1, MAXPL, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, prices);
        require(centralDB && addNetwork(centralDB, plan) == 0, "no network");
    }
    ~OfSession() override { CALL(killTarnex); }

private:
    void callCore(std::size_t i) override
    {
        computeInCore(i, src[i], dst[i], [](std::span<Long>) {});
    }

    void callJava() override
    {
        const LocalRef<jobject> paths{
            env, env->CallStaticObjectMethod(caller, compute, engine, javaSrc, javaDst, took)};
        if (pathNodes == 0 && paths)
            compare(static_cast<jobjectArray>(paths.get()));
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

    const jobject engine = newObject("org/kestro/repository/TARNEX/JNITARNEX");
    const jmethodID compute = env->GetStaticMethodID(
        caller, "compute", "(Lorg/kestro/repository/TARNEX/JNITARNEX;[I[I[J)[[I");
};

/** The Engine of Java against that of C++, each with the network. */
class OfEngine : public Comparison
{
public:
    OfEngine(Rng &rng, const NetworkPlan &plan)
        : Comparison(rng, static_cast<int>(plan.nodes.size()))
    {
        std::vector<jint> from;
        std::vector<jint> to;
        std::vector<jdouble> capacity;
        for (const Long node : plan.nodes)
            here.addNode(tarnex::NodeId{node});
        for (const PlannedLink &link : plan.links) {
            here.addLink({tarnex::LinkId{static_cast<Long>(from.size())}, tarnex::NodeId{link.src},
                          tarnex::NodeId{link.dst}, std::span{&link.capacity, 1}});
            from.push_back(link.src);
            to.push_back(link.dst);
            capacity.push_back(link.capacity);
        }
        const auto nbLinks = static_cast<jsize>(capacity.size());
        const jdoubleArray capacities = env->NewDoubleArray(nbLinks);
        env->SetDoubleArrayRegion(capacities, 0, nbLinks, capacity.data());
        const jmethodID open =
            env->GetStaticMethodID(caller, "open", "(I[I[I[D)Lorg/kestro/tarnex/Engine;");
        there =
            env->CallStaticObjectMethod(caller, open, static_cast<jint>(plan.nodes.size()),
                                        newIntArray(env, from), newIntArray(env, to), capacities);
        require(there != nullptr, "no engine in Java");
    }
    ~OfEngine() override
    {
        const LocalRef<jclass> type{env, env->GetObjectClass(there)};
        env->CallVoidMethod(there, env->GetMethodID(type.get(), "close", "()V"));
    }

private:
    void callCore(std::size_t i) override { length += nodesOf(i); }

    std::size_t nodesOf(std::size_t i)
    {
        const auto proposed = here.propose({.ingress = tarnex::NodeId{src[i]},
                                            .egress = tarnex::NodeId{dst[i]},
                                            .bandwidth = 1.0});
        return proposed.value().path.nodes.size();
    }

    void callJava() override
    {
        const jint nodes = env->CallStaticIntMethod(caller, propose, there, javaSrc, javaDst, took);
        if (pathNodes == 0) {
            for (std::size_t i = 0; i < nbRequests; ++i)
                pathNodes += nodesOf(i);
            require(pathNodes == static_cast<std::size_t>(nodes), "paths differ");
        }
    }

    tarnex::Engine here;
    jobject there = nullptr;
    const jmethodID propose =
        env->GetStaticMethodID(caller, "propose", "(Lorg/kestro/tarnex/Engine;[I[I[J)I");
    std::size_t length = 0; ///< so that no answer goes unused
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

template <class Compared>
void printRow(const char *side, int nodes, int linksPerNode)
{
    require(env->PushLocalFrame(64) == 0, "no memory in the JVM");
    Rng rng(static_cast<unsigned>(nodes));
    const NetworkPlan plan = randomNetwork(rng, nodes, linksPerNode, 1);
    Compared subject{rng, plan};
    for (int round = 0; round < warmUpRounds; ++round)
        subject.run();
    subject.forget();
    const auto end = Clock::now() + std::chrono::duration<double>(secondsPerNetwork);
    while (Clock::now() < end)
        subject.run();
    subject.print(side, nodes);
    env->PopLocalFrame(nullptr);
}

} // namespace

int main()
{
    require(startJvm({"-Djava.class.path=" CLASS_PATH, "-Djava.library.path=" LIBRARY_PATH}) &&
                exchangeMethod(),
            "no JVM");
    std::printf("%-10s %6s %11s %10s %10s %12s %9s\n", "class", "nodes", "path nodes", "core, us",
                "Java, us", "overhead, us", "limit, us");
    for (const auto &[nodes, linksPerNode] : {std::pair{100, 5}, {1000, 5}, {100, 1}, {1000, 1}}) {
        printRow<OfSession>("JNITARNEX", nodes, linksPerNode);
        printRow<OfEngine>("Engine", nodes, linksPerNode);
    }
}
