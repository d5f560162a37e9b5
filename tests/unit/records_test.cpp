#include "computation/primary/plain/topology.h"
#include "database/books/change.h"
#include "database/books/lookup.h"
#include "support/memory_faults.h"
#include "support/random_network.h"

#include <cmath>

namespace
{

using Records = EngineTest;
using Ids = std::vector<Long>;
using Row = std::vector<double>;
using OwnedState = Owned<DBLinkState, DBlinkStateDestroy>;
using OwnedDataBase = Owned<DataBase, DBdestroy>;

auto partsOf(DBLabelSwitchedPath &lsp)
{
    return std::tie(lsp.id, lsp.precedence, lsp.primID, lsp.type, lsp.noContentionId, lsp.bw,
                    lsp.forbidLinks, lsp.path, lsp.primPath, lsp.backLSPIDs);
}

auto partsOf(LSPRequest &req)
{
    return std::tie(req.id, req.precedence, req.primID, req.type, req.rerouteInfo.id, req.bw,
                    req.rerouteInfo.src, req.rerouteInfo.dst, req.forbidLinks, req.path);
}

auto partsOf(DBLinkState &ls)
{
    return std::tie(ls.color, ls.cap, ls.rbw, ls.pbw, ls.bbw, ls.remoteBbw, ls.fbw, ls.remoteFbw);
}

int set(DoubleVec &vec, Long index, int value) { return dblVecSet(&vec, index, value); }
int set(LongVec &vec, Long index, int value) { return longVecSet(&vec, index, value); }

/** Appends the numbers of a record or a part, vectors as size, top and contents. */
template <class Part>
void collect(Row &row, Part &part, int &next)
{
    if constexpr (requires { partsOf(part); }) {
        std::apply([&](auto &...parts) { (collect(row, parts, next), ...); }, partsOf(part));
    } else if constexpr (std::is_array_v<Part>) {
        std::ranges::for_each(part, [&](auto &element) { collect(row, element, next); });
    } else if constexpr (requires { part.cont; }) {
        EXPECT_TRUE(next == 0 || set(part, 2, next++) == 0);
        row.insert(row.end(), {1.0 * part.size, 1.0 * part.top});
        row.insert(row.end(), part.cont, part.cont + part.top);
    } else {
        part = next == 0 ? part : static_cast<Part>(next++);
        row.push_back(part);
    }
}

/** All numbers of a record, which it first gets from `next` on if that is not 0. */
template <class Record>
Row numbersOf(Record &record, int next = 0)
{
    Row row;
    collect(row, record, next);
    return row;
}

/**
 * Making, initialising and copying a record. Number 4 of a fresh one is `unset`, the others are 0;
 * initialising leaves the first `kept` as they were.
 */
template <auto create, auto init, auto copy, auto end, auto destroy>
void expectWhole(const std::string &unit, const std::string &name, std::ptrdiff_t vectors,
                 int unset = 0, std::ptrdiff_t kept = 0)
{
    using Record = std::remove_pointer_t<decltype(create())>;
    const auto make = [] { return Owned<Record, destroy>{create()}; };
    const auto source = make();
    Row fresh = numbersOf(*source);
    Record record;
    std::memset(&record, 0x7F, sizeof record);
    EXPECT_EQ(init(&record), 0);
    const Row initialised = numbersOf(record);
    EXPECT_TRUE(std::equal(fresh.begin() + kept, fresh.end(), initialised.begin() + kept));
    EXPECT_EQ(std::exchange(fresh[4], 0), unset);
    EXPECT_EQ(std::ranges::count(fresh, 0) + vectors, std::ssize(fresh)); // capacities are 1
    const Row filled = numbersOf(*source, 1);
    EXPECT_EQ(copy(&record, source.get()), 0);
    EXPECT_EQ(numbersOf(record), filled);
    EXPECT_EQ(end(&record), 0);
    expectRefused({noArgument + unit}, init(nullptr), end(nullptr), copy(nullptr, source.get()));
    const Trail notMade{noList, "Unable to create " + name + unit};
    EXPECT_EQ(sweepCycle([&] { return make() ? 0 : -1; }), (Trails{{noMemory + unit}, notMade}));
    EXPECT_EQ(sweepCycle([&] { return init(&record) == 0 ? end(&record) : -1; }), Trails{notMade});
    const Trails trails = sweepFaults(
        make, [&](auto &made) { return copy(made.get(), source.get()); }, [](auto &) { return 0; });
    EXPECT_TRUE(trails.size() == 1 && trails[0][1].ends_with(" copy uncomplete" + unit));
}

TEST_F(Records, MakeRecordsFreshAndCopyThemAsFarAsMemoryGoes)
{
    expectWhole<DBlspNew, DBlspInit, DBlspCopy, DBlspEnd, DBlspDestroy>(
        inDatabase, "label switched path", 4, -1, 4);
    expectWhole<lspRequestNew, lspRequestInit, lspRequestCopy, lspRequestEnd, lspRequestDestroy>(
        inRequests, "label switched path request", 2, -1);
    expectWhole<DBlinkStateNew, DBlinkStateInit, DBlinkStateCopy, DBlinkStateEnd,
                DBlinkStateDestroy>(inDatabase, "link state", 4 * MAXOA * MAXPL);
    // A link state is copied up to the end of the pair that fails.
    const OwnedState source{DBlinkStateNew()};
    const OwnedState copy{DBlinkStateNew()};
    numbersOf(*source, 1);
    const MemoryProbe probe{6};
    expectRefused({noList, "Link state copy uncomplete" + inDatabase},
                  DBlinkStateCopy(copy.get(), source.get()));
    for (const auto *family : {&copy->bbw, &copy->remoteBbw, &copy->fbw, &copy->remoteFbw})
        EXPECT_EQ((Ids{(*family)[0][0].top, (*family)[0][1].top, (*family)[0][2].top}),
                  (Ids{3, family == &copy->remoteBbw ? 0 : 3, 0}));
}

TEST_F(Records, GrowAndShrinkListsOfRequests)
{
    LSPRequestList list{};
    EXPECT_EQ(lspRequestListInit(&list, -3), 0);
    for (Long size = 0; const Long newSize : {3, 1, 1, 0, 3, 20, 3}) {
        EXPECT_EQ(lspRequestListResize(&list, newSize), 0);
        EXPECT_EQ(lspRequestListSize(&list), newSize);
        for (Long i = 0; i < newSize; ++i) {
            LSPRequest *req = lspRequestListGet(&list, i);
            EXPECT_EQ((Ids{req->id, req->path.top}), i < size ? (Ids{1, 3}) : (Ids{0, 0}));
            numbersOf(*req, 1);
        }
        expectRefused({"Out of bound index" + inRequests}, lspRequestListGet(&list, -1),
                      lspRequestListGet(&list, newSize));
        size = newSize;
    }
    EXPECT_EQ(lspRequestListEnd(&list) | lspRequestListEnd(&list), 0);
    expectRefused({"LSPRequestList == NULL" + inRequests}, lspRequestListEnd(nullptr));
    const Trails notMade{{"Impossible to allocate memory for LSPRequestList" + inRequests},
                         {noList, "Unable to create label switched path request" + inRequests,
                          "Error while initialisation of LSPRequest" + inRequests}};
    const auto init = [&] { return lspRequestListInit(&list, 3); };
    EXPECT_EQ(sweepCycle([&] { return init() == 0 ? lspRequestListEnd(&list) : -1; }), notMade);
    EXPECT_EQ(init(), 0);
    const auto size = [&](auto...) { return list.size; };
    const auto resize = [&](Long old) { return lspRequestListResize(&list, old + 6); };
    EXPECT_EQ(sweepFaults(size, resize, size), notMade);
    EXPECT_EQ(lspRequestListEnd(&list), 0);
}

TEST_F(Records, HoldNodeCopiesInSlotsThatOwnTheirLists)
{
    using OwnedNodes = Owned<BKNodeVec, bkNodeVecDestroy>;
    const OwnedNodes source{bkNodeVecNew(2)};
    source->cont[0].nodeId = 7;
    const Trails notMade{{noMemory + inPrimary}, {"Unable to initialize structure" + inPrimary}};
    EXPECT_EQ(sweepCycle([] { return OwnedNodes{bkNodeVecNew(3)} ? 0 : -1; }), notMade);
    for (const int nth : {1, 2, 5}) { // a growth that fails half way, then a smaller one
        const OwnedNodes nodes{bkNodeVecNew(1)};
        auto probe = std::make_unique<MemoryProbe>(nth);
        expectRefused(notMade[nth > 1], bkNodeVecResize(nodes.get(), 100));
        probe.reset();
        EXPECT_EQ(bkNodeVecSet(nodes.get(), 1, &source->cont[0]), 0);
        EXPECT_EQ(bkNodeVecPopBack(nodes.get(), &source->cont[1]), 0);
        EXPECT_EQ((Ids{source->cont[1].nodeId, nodes->top, nodes->size}), (Ids{7, 1, 2}));
    }
}

const std::string notInserted =
    "Unable to insert a new node in the general node container" + inDatabase;
const Trail nodesNotGrown{
    noMemory + inTables, "Unable to resize node vector prior to insertion" + inTables, notInserted};
const Trail linksNotGrown{noMemory + inTables,
                          "Unable to resize link table prior to insertion" + inTables, notInserted};

int addLink(const OwnedDataBase &db, Long id, Long src, Long dst)
{
    return property::addLink(db.get(), {id, src, dst});
}

/** Link 0 from node 0 to 1, link 1 back and link 2 from 1 to 2; node 3 stands alone. */
OwnedDataBase smallNetwork()
{
    OwnedDataBase db{DBnew(77)};
    EXPECT_EQ(property::addNetwork(db.get(), property::networkOf("0:0-1 1:1-0 2:1-2")), 0);
    EXPECT_EQ(DBaddNode(db.get(), 3), 0);
    return db;
}

/** What the accessors tell of a small network. */
Ids describe(const OwnedDataBase &db)
{
    Ids ids{db->nbNodes, db->nbLinks, db->linkSrcVec.top, DBgetMaxNodeID(db.get())};
    for (Long i = 0; i < 16; ++i)
        ids.push_back(DBgetLinkID(db.get(), i / 4, i % 4));
    for (Long i = 0; i < 4; ++i)
        for (auto *list : {DBgetNodeInNeighb(db.get(), i), DBgetNodeOutNeighb(db.get(), i)})
            ids.push_back(list->top);
    return ids;
}

TEST_F(Records, KeepTheSlotsOfALinkStateBeyondTheOneThatReplacesIt)
{
    const OwnedDataBase db = smallNetwork();
    const OwnedState longer{DBlinkStateNew()};
    const OwnedState shorter{DBlinkStateNew()};
    ASSERT_EQ(dblVecSet(&longer->bbw[1][2], 0, 3.0) | dblVecSet(&longer->bbw[1][2], 4, 5.0), 0);
    shorter->cap[1] = 7.0;
    ASSERT_EQ(DBsetLinkState(db.get(), 0, 1, longer.get()), 0);
    ASSERT_EQ(DBsetLinkState(db.get(), 0, 1, shorter.get()), 0);
    const DBLinkState &state = property::storedState(db.get(), {0, 1});
    const auto kept = slots(state.bbw[1][2]);
    EXPECT_EQ((std::vector(kept.begin(), kept.end())), (std::vector{0.0, 0.0, 0.0, 0.0, 5.0}));
    EXPECT_EQ(state.cap[1], 7.0);
}

TEST_F(Records, RefuseWithTheirTrailAndChangeNothing)
{
    const OwnedDataBase owned = smallNetwork();
    DataBase *const db = owned.get();
    for (const Long absent : {-1, 0, 1, INT32_MAX})
        EXPECT_EQ(DBgetLSP(db, absent), nullptr);
    const Ids before = describe(owned);
    const std::string add = "Trying to add a ";
    expectRefused({add + "node with a reserved ID" + inTables, notInserted}, DBaddNode(db, 3));
    expectRefused({noArgument + inTables, notInserted}, DBaddNode(db, -1));
    expectRefused({noArgument + inTables}, DBnodeVecRemove(&db->nodeVec, db->nodeVec.size));
    expectRefused({"Trying to remove an inexistent node" + inDatabase}, DBremoveNode(db, 4));
    expectRefused({add + "link with a reserved ID (ID=2)" + inDatabase}, addLink(owned, 2, 9, 9));
    expectRefused({add + "link between already linked nodes (src = 1, dst = 2)" + inDatabase},
                  addLink(owned, 9, 1, 2));
    expectRefused({"Source or destination node doesn't exist" + inDatabase},
                  addLink(owned, 9, 0, 99), addLink(owned, 9, INT32_MAX, 0));
    expectRefused({noArgument + inDatabase}, addLink(owned, -1, 0, 2), addLink(owned, 9, 0, -1));
    expectRefused({"Link doesn't exist or database unconsistancy" + inDatabase},
                  DBremoveLink(db, 0, 2), DBremoveLink(db, 0, 99));
    expectRefused({"Inexistent Link (src = -7, dst = 9)" + inDatabase}, DBgetLinkState(db, -7, 9));
    const MemoryProbe probe; // ids too large for the tables fail without asking for memory
    for (const Long huge : {INT32_MAX, INT32_MAX - 1, INT32_MAX / 2}) {
        expectRefused(nodesNotGrown, DBaddNode(db, huge));
        expectRefused({noMemory + inTables}, DBlinkTabResize(&db->linkTab, huge));
    }
    EXPECT_LT(probe.largestRequest, 1000u);
    EXPECT_EQ(describe(owned), before);
}

TEST_F(Records, RemoveLspsFromAListThatBandwidthsPutOutOfOrder)
{
    const double noNumber = std::nan("");
    const double bandwidths[] = {5, noNumber, 8, 3, noNumber, 9, 1, noNumber};
    for (std::size_t first = 0; first < std::size(bandwidths); ++first) {
        const Owned<DBLSPList, DBlspListDestroy> list{DBlspListNew(-1)};
        std::vector<Owned<DBLabelSwitchedPath, DBlspDestroy>> lsps;
        for (const double bw : bandwidths) {
            lsps.emplace_back(DBlspNew());
            lsps.back()->id = static_cast<Long>(lsps.size());
            lsps.back()->bw[0] = bw;
            EXPECT_GE(DBlspListInsert(list.get(), lsps.back().get()), 0);
        }
        std::rotate(lsps.begin(), lsps.begin() + static_cast<std::ptrdiff_t>(first), lsps.end());
        for (const auto &lsp : lsps)
            EXPECT_EQ(DBlspListRemove(list.get(), lsp.get()), 0);
        EXPECT_EQ(list->top, 0);
    }
}

TEST_F(Records, CountALinkWhoseIdNoTranslatorCanHold)
{
    for (const Long huge : {INT32_MAX, INT32_MAX - 1, INT32_MAX / 2 + 1}) {
        const OwnedDataBase db = smallNetwork();
        const MemoryProbe probe;
        expectRefused(
            {noList, listNotGrown, noList, listNotGrown, "Link addition uncomplete" + inDatabase},
            addLink(db, huge, 0, 2));
        EXPECT_EQ(std::pair(db->nbLinks, DBgetLinkID(db.get(), 0, 2)), std::pair(4, huge));
        for (const LongVec *translator : {&db->linkSrcVec, &db->linkDstVec})
            EXPECT_TRUE(3 <= translator->top && translator->top <= translator->size);
        EXPECT_EQ(DBremoveNode(db.get(), 0), -1);
        EXPECT_EQ(takeTrail().back(), "Node removal uncomplete" + inDatabase);
        EXPECT_EQ(std::tuple(db->nbLinks, db->nbNodes, db->linkSrcVec.top), std::tuple(1, 3, 3));
        EXPECT_LT(probe.largestRequest, 100'000u);
    }
}

} // namespace
