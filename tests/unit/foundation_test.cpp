#include "support/memory_faults.h"
#include "support/random_network.h"

#include <csignal>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

namespace
{

using ErrorManager = EngineTest;
using Allocation = EngineTest;
using Vectors = EngineTest;
using Values = std::vector<Long>;
using OwnedList = Owned<LongList, longVecDestroy>;

TEST_F(ErrorManager, GrowsWhileFiveOrFewerEntriesRemain)
{
    const Long sizes[][2] = {{0, 1},   {1, 2},   {2, 4},   {3, 8},   {4, 16}, {5, 16},
                             {11, 16}, {12, 32}, {27, 32}, {28, 64}, {59, 64}};
    Trail expected;
    for (const auto &[pushes, size] : sizes) {
        for (; errorManager.top < pushes; addError(WARNING, "%ld", long{errorManager.top}))
            expected.push_back("[WARNING] " + std::to_string(errorManager.top));
        EXPECT_EQ(errorManager.size, size) << pushes << " pushes";
    }
    expectTrail(expected);
}

TEST_F(ErrorManager, PrintsNewestFirstUnderItsGradeAndCutsAt199)
{
    addError(INFO, "a");
    addError(WARNING, "b%c", '!');
    addError(CRITICAL, "c %s %ld", "one", 2L);
    addError(PANIC, "d %d %.1f", 3, 4.5);
    std::string lines = "[PANIC] d 3 4.5\n[CRITICAL] c one 2\n[WARNING] b!\n[INFO] a\n";
    for (const std::size_t length : {198u, 199u, 200u, 5000u}) {
        addError(INFO, "%s", std::string(length, 'x').c_str());
        lines.insert(0, "[INFO] " + std::string(std::min(length, 199ul), 'x') + '\n');
    }
    testing::internal::CaptureStderr();
    printErrorStack();
    printErrorStack();
    errorDestroy();
    addError(PANIC, "nobody listens");
    printErrorStack();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), lines + lines);
}

TEST_F(ErrorManager, RecordsThatItCannotGrowWhileEntriesRemain)
{
    const SystemMemory real = systemMemory;
    for (int push = 0; push <= 15; ++push) {
        if (push == 0 || (push > 10 && push < 15))
            systemMemory.resize = [](void *, std::size_t) -> void * { return nullptr; };
        addError(CRITICAL, "%d", push);
        systemMemory = real;
    }
    EXPECT_EQ(errorManager.size, 32);
    const std::string lack = noMemory + " encountered while resizing error manager";
    expectTrail({lack, "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", lack, "11", lack, "12",
                 lack, "15"});
}

TEST_F(ErrorManager, StopsTheProcessWithoutAFirstEntry)
{
    EXPECT_EXIT((MemoryProbe{1}, errorInit()), testing::KilledBySignal(SIGABRT),
                "Unable to initialize error manager: ");
}

/** The user area as text; checks the size word in front of it and its alignment. */
std::string counted(const void *block, std::size_t bytes)
{
    std::uint32_t word = 0;
    std::memcpy(&word, static_cast<const char *>(block) - sizeof word, sizeof word);
    EXPECT_EQ(word, bytes);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
    return {static_cast<const char *>(block), bytes};
}

TEST_F(Allocation, CountsUserBytesInFrontOfAlignedBlocks)
{
    const Long before = allocatedMemory;
    for (const std::size_t bytes : {0u, 1u, 10u, 24u, 100'000u}) {
        void *raw = std::memset(mymalloc(bytes), 'r', bytes);
        void *zeroed = mycalloc(bytes, 3);
        EXPECT_EQ(counted(zeroed, 3 * bytes), std::string(3 * bytes, '\0'));
        std::memset(zeroed, 'z', 3 * bytes);
        EXPECT_EQ(allocatedMemory - before, static_cast<Long>(4 * bytes));
        raw = myrealloc(raw, bytes + 50);
        zeroed = mygrow(zeroed, 3 * bytes + 50);
        EXPECT_EQ(counted(raw, bytes + 50).substr(0, bytes), std::string(bytes, 'r'));
        EXPECT_EQ(counted(zeroed, 3 * bytes + 50),
                  std::string(3 * bytes, 'z') + std::string(50, '\0'));
        raw = myrealloc(raw, bytes / 2);
        EXPECT_EQ(counted(raw, bytes / 2), std::string(bytes / 2, 'r'));
        myfree(zeroed);
        EXPECT_EQ(allocatedMemory - before, static_cast<Long>(bytes / 2));
        myfree(raw);
    }
}

TEST_F(Allocation, ChangesNothingWhereMemoryOrTheSizeWordEnds)
{
    void *block = std::memset(mymalloc(8), 'b', 8);
    const Long before = bytesInUse();
    for (const std::size_t bytes : {std::size_t{16}, std::size_t{1} << 31, SIZE_MAX}) {
        const MemoryProbe probe{1, Lasting::fromThenOn};
        for (void *refused :
             {mymalloc(bytes), mycalloc(bytes / 8, 8), mycalloc(bytes, bytes > 16 ? 65'537 : 1),
              myrealloc(block, bytes), mygrow(block, bytes)})
            EXPECT_EQ(refused, nullptr);
        EXPECT_LT(probe.largestRequest, 100u);
    }
    EXPECT_EQ(bytesInUse(), before);
    EXPECT_EQ(counted(block, 8), "bbbbbbbb");
    myfree(block);
}

TEST_F(Allocation, ReportsASecondReleaseAndKeepsItFromTheSystem)
{
    for (const std::size_t bytes : {std::size_t{10}, std::size_t{1} << 20, std::size_t{1} << 25}) {
        const MemoryProbe probe;
        const Long before = allocatedMemory;
        void *block = mymalloc(bytes);
        testing::internal::CaptureStderr();
        for (int i = 0; i < 3; ++i)
            myfree(block);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "Warning already freed\nWarning already freed\n");
        EXPECT_EQ(allocatedMemory, before);
        for (int i = 0; i < 2000; ++i) // until the block has gone back
            myfree(mymalloc(100));
        EXPECT_EQ(probe.repeatedReleases, 0);
        EXPECT_GT(probe.released.size(), 1000u) << "released blocks pile up";
    }
}

TEST_F(Allocation, MapsLargeBlocksThatGrowZeroedAndGoBackToTheSystem)
{
    const MemoryProbe probe;
    const std::size_t bytes[] = {70'000, 60'000, 300'000, 299'000, 4'000'000};
    for (int round = 0; round < 20; ++round) {
        char *block = static_cast<char *>(mycalloc(1, bytes[0]));
        std::memset(block, 'm', bytes[0]);
        block = static_cast<char *>(myrealloc(block, bytes[1])); // leaves something behind it
        block = static_cast<char *>(mygrow(block, bytes[2]));
        EXPECT_EQ(counted(block, bytes[2]),
                  std::string(bytes[1], 'm') + std::string(bytes[2] - bytes[1], '\0'));
        block = static_cast<char *>(myrealloc(block, bytes[3]));
        EXPECT_EQ(mygrow(block, bytes[3] - 1), block);
        block = static_cast<char *>(mygrow(block, bytes[4]));
        EXPECT_EQ(std::string(block, bytes[4]).find_last_not_of('\0'), bytes[1] - 1);
        EXPECT_EQ(probe.largestRequest, 4'001'792u) << "moved, not copied";
        testing::internal::CaptureStderr();
        myfree(block);
        myfree(block);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning already freed\n");
        EXPECT_LE(probe.mappings, 5) << "what is held back is bounded";
    }
}

TEST_F(Allocation, TakesFewMappingsAndGivesPagesBackEmpty)
{
    const auto lines = [](const char *file) {
        std::ifstream text{file};
        return std::count(std::istreambuf_iterator{text}, {}, '\n');
    };
    const auto before = lines("/proc/self/maps");
    std::vector<char *> blocks;
    for (std::size_t i = 0; i < 70'000; ++i) {
        const std::size_t bytes = 16'384 + i % 7 * 16'000;
        blocks.push_back(static_cast<char *>(mycalloc(1, bytes)));
        ASSERT_EQ(blocks.back()[0] | blocks.back()[bytes - 1], 0);
        blocks.back()[bytes - 1] = 'm';
        if (i % 3 == 0)
            blocks.back() = static_cast<char *>(mygrow(blocks.back(), 2 * bytes));
        if (i % 2 == 0) {
            myfree(blocks.back());
            blocks.pop_back();
        }
    }
    EXPECT_LE(lines("/proc/self/maps"), before + 150);
    for (char *block : blocks)
        myfree(block);
}

/** Runs an operation, first without memory: where it needs some it must fail with `trail`. */
template <class Operation>
void succeedAfter(const Trail &trail, Operation operation)
{
    auto probe = std::make_unique<MemoryProbe>(1);
    const int result = operation();
    const bool faulted = probe->faulted();
    probe.reset();
    EXPECT_EQ(result, faulted ? -1 : 0);
    expectTrail(faulted ? trail : Trail{});
    EXPECT_TRUE(!faulted || operation() == 0);
}

/** Random operations against a model, in which a slot that a push added has no known value. */
template <class Vec, auto create, auto init, auto end, auto destroy, auto copy, auto resize,
          auto push, auto pop, auto get, auto set>
void expectLikeAPlainModel(const std::string &name)
{
    using Subject = Owned<Vec, destroy>;
    const Trail notGrown{noList, "Unable to resize " + name + " vector" + inCommon};
    std::remove_pointer_t<decltype(Vec::cont)> e{};
    std::mt19937 random{3};
    for (int run = 0; run < 60; ++run) {
        const Long capacity = run % 7 - 1;
        const Subject vec{create(capacity)};
        std::vector<double> model(capacity < 0 ? 1 : static_cast<std::size_t>(capacity));
        std::size_t top = 0;
        const auto isNext = [&](double value) { return value != value || e == value; };
        for (Long step = 1; step <= 25; ++step) {
            const auto at = static_cast<Long>(random() % 12);
            const auto index = static_cast<std::size_t>(at);
            const auto action = random() % 8;
            const std::size_t size = model.size();
            if (action == 0) {
                const Subject source{create(at)};
                EXPECT_EQ(set(source.get(), at, step), 0);
                succeedAfter({noList}, [&] { return copy(vec.get(), source.get()); });
                model.resize(std::max({size, index + 1, 2 * index}));
                std::ranges::fill_n(model.begin(), source->size, 0.0);
                model[index] = step;
                top = index + 1;
            } else if (action == 1) {
                succeedAfter({noList}, [&] { return resize(vec.get(), at); });
                model.resize(std::max(size, index));
            } else if (action == 2) {
                succeedAfter(notGrown, [&] { return set(vec.get(), at, step); });
                model.resize(index < size ? size : std::max(index + 1, 2 * size));
                model[index] = step;
                top = std::max(top, index + 1);
            } else if (action < 6) {
                succeedAfter({noList}, [&] { return push(vec.get(), step); });
                model.resize(top < size ? size : std::max<std::size_t>(1, 2 * size),
                             std::numeric_limits<double>::quiet_NaN());
                model[top++] = step;
            } else if (top > 0) {
                EXPECT_TRUE(pop(vec.get(), &e) == 0 && isNext(model[--top]));
            } else {
                expectRefused({"Pop on empty stack" + inCommon}, pop(vec.get(), &e));
            }
            ASSERT_EQ(std::tuple(vec->size, vec->top), std::tuple(model.size(), top));
            for (Long i = 0; const double value : model)
                EXPECT_TRUE(get(vec.get(), i++, &e) == 0 && isNext(value)) << run << step;
            expectRefused({"Bad argument (wrong index)" + inCommon}, get(vec.get(), vec->size, &e));
        }
    }

    EXPECT_EQ(sweepCycle([] { return Subject{create(7)} ? 0 : -1; }), Trails{{noList}});
    const Subject live{create(9)};
    Vec ended = *live;
    EXPECT_EQ(init(&ended, 3) | end(&ended) | ended.size | ended.top, 0);
    expectRefused({noArgument + inCommon}, end(&ended), copy(&ended, live.get()),
                  copy(live.get(), &ended), resize(&ended, 4), push(&ended, 1), pop(&ended, &e),
                  get(&ended, -1, &e), set(&ended, -1, 1));
    expectRefused({negativeIndex + inCommon}, get(live.get(), -1, &e), set(live.get(), -1, 1));
    const MemoryProbe probe;
    for (const Long huge : {INT32_MAX, INT32_MAX / 2 + 1}) {
        expectRefused({noList}, resize(live.get(), huge), create(huge));
        expectRefused(notGrown, set(live.get(), huge, 1));
    }
    EXPECT_LT(probe.largestRequest, 100u);
}

TEST_F(Vectors, AreLikeAPlainModel)
{
    expectLikeAPlainModel<LongVec, longVecNew, longVecInit, longVecEnd, longVecDestroy, longVecCopy,
                          longVecResize, longVecPushBack, longVecPopBack, longVecGet, longVecSet>(
        "long");
    expectLikeAPlainModel<DoubleVec, dblVecNew, dblVecInit, dblVecEnd, dblVecDestroy, dblVecCopy,
                          dblVecResize, dblVecPushBack, dblVecPopBack, dblVecGet, dblVecSet>(
        "double");
}

OwnedList listOf(const Values &values)
{
    OwnedList list{longVecNew(-1)};
    for (const Long value : values)
        EXPECT_EQ(longVecPushBack(list.get(), value), 0);
    return list;
}

Values valuesOf(const OwnedList &list) { return property::idsIn(*list); }

TEST_F(Vectors, InsertAndRemoveAsAPlainSequenceDoes)
{
    std::mt19937 random{7};
    const OwnedList list = listOf({});
    Values model;
    for (int i = 0; i < 2000; ++i) {
        const auto at = static_cast<Long>(random() % (model.size() + 1));
        if (random() % 5 < (i < 1000 ? 4u : 1u)) {
            succeedAfter({noList, listNotGrown}, [&] { return longListInsert(list.get(), at, i); });
            model.insert(model.begin() + at, i);
        } else if (at < static_cast<Long>(model.size())) {
            EXPECT_EQ(longListRemove(list.get(), at), 0);
            model.erase(model.begin() + at);
        } else {
            expectRefused({"[WARNING] Removing inexistent list element" + inCommon},
                          longListRemove(list.get(), at));
        }
        ASSERT_EQ(valuesOf(list), model) << "step " << i;
    }
    expectRefused({negativeIndex + inCommon}, longListInsert(list.get(), -1, 1),
                  longListRemove(list.get(), -1));
    EXPECT_EQ(list->size, 1024);
    EXPECT_EQ(longListInsert(list.get(), 2050, 5), 0); // beyond the end: the top rises by one
    EXPECT_EQ(std::tuple(list->size, list->top), std::tuple(2051, model.size() + 1));
}

TEST_F(Vectors, MergeIntoTheSortedUnionWithRepetitions)
{
    std::mt19937 random{2};
    const auto some = [&random] {
        Values values(random() % 6);
        for (Long &value : values)
            value = std::array{INT32_MIN, -9, 0, 4, INT32_MAX}[random() % 5];
        return values;
    };
    for (std::size_t i = 0; i < 300; ++i) {
        Values expected[] = {some(), some(), {}}; // the inputs are left sorted
        const OwnedList lists[] = {listOf(expected[0]), listOf(expected[1]), listOf(Values(9, 6))};
        EXPECT_EQ(longListMerge(lists[0].get(), lists[1].get(), lists[i % 3].get()), 0);
        std::ranges::sort(expected[0]);
        std::ranges::sort(expected[1]);
        std::ranges::set_union(expected[0], expected[1], std::back_inserter(expected[2]));
        expected[i % 3] = expected[2];
        for (const std::size_t list : {std::size_t{0}, std::size_t{1}, i % 3})
            EXPECT_EQ(valuesOf(lists[list]), expected[list]);
    }
    const OwnedList live = listOf({2, 1});
    expectRefused({noArgument + inCommon}, longListInsert(nullptr, -1, 1), longListSort(nullptr),
                  longListMerge(live.get(), nullptr, live.get()));
    const auto merge = [&](auto &l) { return longListMerge(live.get(), l.get(), l.get()); };
    EXPECT_EQ(sweepFaults([] { return listOf(Values(2, 5)); }, merge, valuesOf),
              (Trails{{noList, "Unable to initialize temporary list of longs" + inCommon},
                      {noList, "Unable to create resulting merged list of longs" + inCommon}}));
}

} // namespace
