package org.kestro.tarnex;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertInstanceOf;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Map;
import java.util.OptionalDouble;
import java.util.OptionalInt;
import java.util.concurrent.CopyOnWriteArrayList;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.logging.Logger;
import java.util.stream.Stream;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.MethodSource;
import org.kestro.repository.TARNEX.JNITARNEX;

/** The typed API: values that go in and come out, wrong use, and who may call when. */
class EngineTest {
    private final Engine engine = square();

    @AfterEach
    void close() {
        engine.close();
    }

    /** Nodes 0 to 3; links 0: 0-1, 1: 1-3 of 100, 2: 0-2, 3: 2-3 of 40; by hops. */
    private static Engine square() {
        return square(Options.builder().objective(Objective.HOPS));
    }

    private static Engine square(Options.Builder options) {
        Engine square = new Engine(options.build());
        for (int node = 0; node < 4; node++) {
            square.addNode(node);
        }
        square.addLink(0, 0, 1, 100);
        square.addLink(1, 1, 3, 100);
        square.addLink(2, 0, 2, 40);
        square.addLink(3, 2, 3, 40);
        return square;
    }

    private static Path path(List<Integer> nodes, Integer... links) {
        return new Path(nodes, List.of(links));
    }

    private Placement placed(Request request) {
        return assertInstanceOf(Placement.class, engine.place(request));
    }

    @Test
    void placesProtectsAndReadsBack() {
        Path upper = path(List.of(0, 1, 3), 0, 1);
        Path lower = path(List.of(0, 2, 3), 2, 3);
        Request request = new Request(0, 3, 40).level(2).id(7);
        Placement expected = new Placement(7, upper, OptionalDouble.of(80), List.of());
        assertEquals(expected, engine.propose(request));
        assertFalse(engine.has(7));
        assertEquals(expected, engine.place(request));

        Lsp backup = new Lsp(9, LspKind.GLOBAL_BACKUP, 0, 0, 40, lower,
                             new Protects(7, List.of(0, 1), List.of(1)));
        assertEquals(new Protection(List.of(backup)), engine.protect(7, Scheme.GLOBAL, 9));
        assertEquals(backup, engine.lsp(9));
        assertEquals(List.of(9), engine.backupsOf(7));
        assertEquals(List.of(7), engine.lspsOn(1));
        LinkUse use = engine.use(1);
        assertEquals("1 1 3", use.id() + " " + use.from() + " " + use.to());
        assertArrayEquals(new double[] {100, 0, 0, 0, 0, 0, 0, 0}, use.capacity());
        assertEquals(40, use.primary()[0][2]);
        assertEquals(0, use.shared()[0][2]);
        assertEquals(40, use.total()[0][2]);
        assertEquals(40, engine.use(3).shared()[0][0]);
        assertEquals(40, engine.use(3).total()[0][0]);
        assertEquals(new Engine.Counts(4, 4, 2), engine.counts());
        assertEquals(OptionalInt.of(3), engine.linkBetween(2, 3));
        assertEquals(OptionalInt.empty(), engine.linkBetween(3, 2));

        engine.remove(9);
        Protection part = (Protection) engine.protect(7, Scheme.GLOBAL, 9, 15);
        assertEquals(15, part.backups().get(0).bandwidth());
        engine.remove(9);
        assertEquals(backup, engine.addBackup(7, LspKind.GLOBAL_BACKUP, lower.nodes(), 9));
        assertEquals(List.of(7, 9), engine.removeNode(1).stream().map(Lsp::id).toList());
        assertEquals(new Engine.Counts(3, 2, 0), engine.counts());
    }

    @Test
    void everyWeightCountsForItself() {
        double[] scores = {60, -0.0375, 60, 1800, 0.6, 0.66, 1.0 / 30};
        List<Integer> upper = List.of(2, 4, 5, 6);
        Map<Objective, Integer> ofObjective = Map.of(
                Objective.FORTZ, 0, Objective.BALANCE, 1, Objective.HOPS, 2, Objective.LOAD, 5,
                Objective.DELAY, 6);
        for (int i = 0; i < scores.length; i++) {
            double[] w = new double[scores.length];
            w[i] = 1;
            Weights weights = new Weights(w[0], w[1], w[2], w[3], w[4], w[5], w[6]);
            int weight = i;
            ofObjective.forEach((objective, index) -> assertEquals(
                    index == weight, Weights.of(objective).equals(weights)));
            try (Engine other = square(Options.builder().weights(weights))) {
                other.add(new Request(0, 3, 40), List.of(0, 1, 3));
                Placement second = (Placement) other.place(new Request(0, 3, 30));
                assertEquals(scores[i], second.score().orElseThrow(), 1e-12);
                assertEquals(upper.contains(i) ? 1 : 2, second.path().nodes().get(1));
            }
        }
    }

    @Test
    void everyOptionCountsForItself() {
        for (int dear : new int[] {5, 6}) {
            try (Engine priced = square(Options.builder().objective(Objective.HOPS)
                    .preemptionPrice(0, dear, 1))) {
                priced.add(new Request(0, 3, 80).level(5).id(5), List.of(0, 1, 3));
                priced.add(new Request(0, 3, 40).level(6).id(6), List.of(0, 2, 3));
                PlaceResult result = priced.place(new Request(0, 3, 35).mayPreempt(true));
                assertEquals(11 - dear, ((Placement) result).victims().get(0).id());
            }
        }
        Request large = new Request(0, 3, 400);
        try (Engine boundless = square(Options.builder().testsCapacity(false));
                Engine terse = square(Options.builder().explainsRefusals(false));
                Engine without = square(Options.builder().allowsBackups(false))) {
            assertInstanceOf(Placement.class, boundless.place(large));
            assertEquals(List.of(), ((Refusal) terse.place(large)).inTheWay());
            without.place(new Request(0, 3, 1).id(1));
            assertThrows(IllegalArgumentException.class, () -> without.protect(1, Scheme.GLOBAL));
        }
    }

    @Test
    void aRequestKeepsWhatItIsNotToldToChange() {
        Request all = new Request(1, 2, 3, 4, 5, true, 6, List.of(7));
        Request plain = new Request(1, 2, 3);
        assertEquals(all, plain.classType(4).level(5).mayPreempt(true).id(6).avoiding(List.of(7)));
        assertEquals(all, plain.avoiding(List.of(7)).id(6).mayPreempt(true).level(5).classType(4));
    }

    @Test
    void whatGivesWayIsToldInFull() {
        placed(new Request(0, 3, 80).level(5).id(1));
        Placement placement = placed(new Request(0, 3, 90).level(1).mayPreempt(true));
        assertEquals(List.of(new Lsp(1, LspKind.PRIMARY, 0, 5, 80,
                                     path(List.of(0, 1, 3), 0, 1),
                                     new Protects(-1, List.of(), List.of()))),
                     placement.victims());
        assertFalse(engine.has(1));
    }

    @Test
    void refusalsAreValuesThatTell() {
        placed(new Request(0, 3, 30));
        Request large = new Request(0, 3, 90);
        Refusal refusal = assertInstanceOf(Refusal.class, engine.place(large));
        assertEquals(Reason.NO_ROOM, refusal.reason());
        assertEquals(70, refusal.largestBandwidth());
        assertEquals(List.of(new Refusal.LinkInTheWay(0, 70), new Refusal.LinkInTheWay(2, 40)),
                     refusal.inTheWay());
        assertTrue(refusal.sentence().contains("70 would fit"), refusal.sentence());
        assertFalse(engine.trail().isEmpty());
        assertEquals(refusal, engine.explain(large).orElseThrow());
        assertTrue(engine.explain(new Request(0, 3, 70)).isEmpty());

        Placement given = assertInstanceOf(
                Placement.class, engine.add(new Request(-1, -1, 60), List.of(0, 1, 3)));
        assertEquals(OptionalDouble.empty(), given.score());
        assertEquals(Reason.NO_ROOM_FOR_DISJOINT_PATH,
                     engine.explainProtection(given.id(), Scheme.GLOBAL).orElseThrow().reason());
        assertInstanceOf(Refusal.class, engine.protect(given.id(), Scheme.LOCAL_OR_GLOBAL));
        assertEquals(2, engine.counts().lsps());
    }

    @Test
    void manyAreAskedForAndReadAtOnce() {
        List<Request> requests = List.of(
                new Request(0, 3, 60), new Request(0, 3, 500), new Request(0, 3, 30).level(4),
                new Request(0, 3, 30).avoiding(List.of(1, Integer.MIN_VALUE)),
                new Request(3, 0, 1));
        try (Engine single = square()) {
            List<PlaceResult> expected = requests.stream().map(single::place).toList();
            assertEquals(expected, engine.placeAll(requests));
            assertEquals(single.lsps(), engine.lsps());
        }
        assertEquals(100, engine.placeAll(Collections.nCopies(100, requests.get(1))).size());
        assertEquals(List.of(0, 1, 2, 3), engine.nodes());
        LinkTable links = engine.links();
        assertEquals(engine.counts().links(), links.size());
        for (int i = 0; i < links.size(); i++) {
            LinkUse use = engine.use(links.id(i));
            assertEquals(use.from() + " " + use.to(), links.from(i) + " " + links.to(i));
            for (int c = 0; c < 8; c++) {
                assertEquals(use.capacity()[c], links.capacity(i, c));
                for (int p = 0; p < 8; p++) {
                    assertEquals(use.primary()[c][p], links.primary(i, c, p));
                    assertEquals(use.shared()[c][p], links.shared(i, c, p));
                    assertEquals(use.total()[c][p], links.total(i, c, p));
                }
            }
        }
        for (Executable outside : List.<Executable>of(
                () -> links.id(4), () -> links.id(-1), () -> links.capacity(0, 8),
                () -> links.primary(0, 8, 0), () -> links.shared(0, 0, 8),
                () -> links.total(1, 0, -1))) {
            assertThrows(IndexOutOfBoundsException.class, outside);
        }
        for (List<Request> wrong : List.of(
                List.of(new Request(0, 3, 1), new Request(0, 3, 1).level(8)),
                List.of(new Request(0, 3, 1).id(50), new Request(0, 3, 1).id(50)),
                List.of(new Request(0, 3, 1).id(50), new Request(0, 3, 1)),
                List.of(new Request(0, 3, 1).id(50), new Request(0, 3, 1).id(0)))) {
            assertThrows(IllegalArgumentException.class, () -> engine.placeAll(wrong));
            assertEquals(List.of(0, 1, 2), engine.lsps());
        }
    }

    private static Stream<Executable> wrongUse() {
        Engine wrong = square();
        return Stream.of(
                () -> wrong.addNode(3), () -> wrong.addNode(-1), () -> wrong.addLink(4, 0, 9, 1),
                () -> wrong.addLink(4, 1, 0, Double.NaN), () -> wrong.removeLink(9),
                () -> wrong.place(new Request(0, 3, -1)),
                () -> wrong.place(new Request(0, 3, Double.POSITIVE_INFINITY)),
                () -> wrong.place(new Request(0, 3, 1).level(8)),
                () -> wrong.explain(new Request(0, 3, 1).classType(1)),
                () -> wrong.protect(5, Scheme.LOCAL), () -> wrong.use(7), () -> wrong.lsp(0),
                () -> wrong.remove(0), () -> new Engine(Options.builder().levels(9).build()),
                () -> new Engine(Options.builder().classTypes(0).build()));
    }

    @ParameterizedTest
    @MethodSource
    void wrongUse(Executable call) {
        String message = assertThrows(IllegalArgumentException.class, call).getMessage();
        assertNotNull(message);
    }

    @Test
    void nullIsCalledByItsName() {
        Map.<String, Executable>of(
                "options", () -> new Engine(null), "request", () -> engine.place(null),
                "requests", () -> engine.placeAll(null), "capacity",
                () -> engine.addLink(9, 3, 0, (double[]) null), "scheme",
                () -> engine.protect(1, null)).forEach((name, call) -> {
                    String message = assertThrows(NullPointerException.class, call).getMessage();
                    assertTrue(message.contains('"' + name + '"'), message);
                });
    }

    @Test
    void handlesThatAreNotLiveAreRefused() {
        Engine closed = square();
        closed.close();
        closed.close();
        assertThrows(IllegalStateException.class, closed::counts);
        long first = Native.open(Options.builder().build().packed());
        assertTrue(Native.close(first));
        long second = Native.open(Options.builder().build().packed()); // in the same place
        long nowhere = second + (1 << 30); // the place next to it may hold an engine of another test
        for (long handle : new long[] {first, -1, 0, nowhere, second | 1L << 63,
                                       Long.MAX_VALUE, Long.MIN_VALUE}) {
            assertThrows(IllegalStateException.class,
                         () -> Native.call(handle, Native.COUNTS, new double[0], new String[1]));
            assertFalse(Native.close(handle));
        }
        for (int operation : new int[] {-1, Native.TRAIL + 1, Native.PLACE}) {
            assertThrows(IllegalArgumentException.class,
                         () -> Native.call(second, operation, new double[0], new String[1]));
        }
        assertTrue(Native.close(second));
    }

    @Test
    void oldSessionsAndNewEnginesDoNotMeet() throws Exception {
        JNITARNEX old = new JNITARNEX();
        old.jniinitTarnex(2, 8, false, true, true, 0, 0, 0, 0, 0, 0, 1, new float[2][8]);
        old.jniaddNode(0);
        engine.addNode(9);
        old.jniaddNode(1);
        float[][] zero = new float[2][8];
        old.jniaddLink(0, 0, 0, 1, new float[] {5, 6}, zero, zero, zero, zero);
        placed(new Request(0, 3, 30));
        int[] path = old.jnicomputePath(1, 0, 1, -1, -1, -1, 1, 0, 6, null, true, false);
        assertArrayEquals(new int[] {0, 1}, path);
        assertEquals(new Engine.Counts(5, 4, 1), engine.counts());
        old.jniremoveLSP(1);
        old.jnikillTarnex();
    }

    @Test
    void threadsTakeTurns() throws Exception {
        int threads = 4;
        int calls = 500;
        var pool = Executors.newFixedThreadPool(threads);
        List<Future<?>> ends = new ArrayList<>();
        for (int i = 0; i < threads; i++) {
            int own = 1000 * (i + 1);
            ends.add(pool.submit(() -> {
                for (int call = 0; call < calls; call++) {
                    placed(new Request(0, 3, 0.01).id(own + call));
                    if (call % 2 == 1) {
                        engine.remove(own + call);
                    }
                }
            }));
        }
        for (Future<?> end : ends) {
            end.get();
        }
        pool.shutdown();
        assertEquals(threads * calls / 2, engine.counts().lsps());
    }

    @Test
    void aForgottenEngineGivesItsMemoryBackAndIsLogged() throws InterruptedException {
        List<String> lines = new CopyOnWriteArrayList<>();
        Logger logger = Logger.getLogger("org.kestro.tarnex");
        logger.setFilter(record -> !lines.add(record.getMessage()));
        long before = Engine.countedMemory();
        forget();
        for (int i = 0; i < 200 && (Engine.countedMemory() > before || lines.isEmpty()); i++) {
            System.gc();
            Thread.sleep(10);
        }
        logger.setFilter(null);
        assertTrue(Engine.countedMemory() <= before);
        assertEquals("An engine was never closed and has been released now.", lines.get(0));
    }

    private static void forget() {
        long before = Engine.countedMemory();
        square().addNode(99);
        assertTrue(Engine.countedMemory() > before);
    }
}
