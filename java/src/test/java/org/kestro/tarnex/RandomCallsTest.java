package org.kestro.tarnex;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.atomic.AtomicLong;
import java.util.concurrent.atomic.AtomicReferenceArray;
import java.util.stream.IntStream;
import org.junit.jupiter.api.Test;
import org.kestro.ProcessRunner;

/**
 * Random calls, right and wrong, by several threads on engines that they share and that come and
 * go. The system property {@code tarnex.calls} makes the run longer.
 */
class RandomCallsTest extends ProcessRunner {
    private static final int CALLS = Integer.getInteger("tarnex.calls", 40_000);
    private static final int THREADS = 4;
    private static final int NODES = 8;

    private final AtomicReferenceArray<Engine> engines = new AtomicReferenceArray<>(3);
    private final AtomicLong refused = new AtomicLong();
    private final AtomicLong done = new AtomicLong();

    @Test
    void leaveEveryEngineWholeAndTakeNoMemory() throws Exception {
        long before = Engine.countedMemory();
        for (int i = 0; i < engines.length(); i++) {
            engines.set(i, opened());
        }
        ExecutorService pool = Executors.newFixedThreadPool(THREADS);
        List<Future<?>> ends = new ArrayList<>();
        for (int i = 0; i < THREADS; i++) {
            Random random = new Random(i);
            ends.add(pool.submit(() -> {
                for (int call = 0; call < CALLS / THREADS; call++) {
                    step(random);
                }
            }));
        }
        for (Future<?> end : ends) {
            end.get();
        }
        pool.shutdown();
        assertTrue(refused.get() > CALLS / 50 && done.get() > CALLS / 4, refused + " " + done);
        for (int i = 0; i < engines.length(); i++) {
            check(engines.get(i));
            engines.get(i).close();
        }
        assertTrue(Engine.countedMemory() <= before);
    }

    private static Engine opened() {
        Engine engine = new Engine(Options.builder().classTypes(2).levels(4).build());
        for (int node = 0; node < NODES; node++) {
            engine.addNode(node);
        }
        for (int from = 0; from < NODES; from++) {
            for (int hop = 1; hop < 4; hop++) {
                engine.addLink(4 * from + hop, from, (from + hop) % NODES, 100, 50);
            }
        }
        return engine;
    }

    private void step(Random random) {
        int place = random.nextInt(engines.length());
        Engine engine = engines.get(place);
        try {
            call(engine, random, place);
            done.incrementAndGet();
        } catch (IllegalArgumentException | IllegalStateException wrongUse) {
            refused.incrementAndGet();
        }
    }

    private void call(Engine engine, Random random, int place) {
        int id = random.nextInt(60) - 1;
        int node = random.nextInt(NODES + 1);
        Request request = new Request(node, random.nextInt(NODES), random.nextInt(30) - 1)
                .classType(random.nextInt(2)).level(random.nextInt(5))
                .mayPreempt(random.nextBoolean()).avoiding(List.of(id)).id(id);
        Scheme scheme = Scheme.values()[random.nextInt(3)];
        switch (random.nextInt(24)) {
            case 0 -> engine.addNode(node);
            case 1 -> engine.removeNode(node);
            case 2 -> engine.removeLink(id);
            case 3, 4, 5 -> engine.addLink(id, node, random.nextInt(NODES), 90, 40);
            case 6, 7, 8, 9 -> engine.place(request);
            case 10 -> engine.placeAll(List.of(request.id(-1), request.id(-1)));
            case 11 -> engine.propose(request);
            case 12, 13, 14 -> engine.protect(id, scheme);
            case 15 -> engine.add(request, List.of(node, (node + 1) % NODES));
            case 16 -> engine.addBackup(id, LspKind.GLOBAL_BACKUP, List.of(0, 2, 4), -1);
            case 17, 18 -> engine.remove(id);
            case 19 -> engine.explain(request);
            case 20 -> engine.explainProtection(id, scheme);
            case 21 -> links(engine);
            case 22 -> engine.lsps().forEach(engine::lsp); // any of them may be gone by then
            default -> {
                if (random.nextInt(40) == 0) {
                    Engine other = opened();
                    (engines.compareAndSet(place, engine, other) ? engine : other).close();
                }
            }
        }
    }

    /** Reads them at one moment: none is gone before it is read. */
    private static void links(Engine engine) {
        try {
            engine.links();
        } catch (IllegalArgumentException torn) {
            throw new AssertionError(torn);
        }
    }

    /** What primaries reserve is what the LSPs that are there add up to. */
    private static void check(Engine engine) {
        LinkTable links = engine.links();
        List<Lsp> lsps = engine.lsps().stream().map(engine::lsp).toList();
        for (int link = 0; link < links.size(); link++) {
            int id = links.id(link);
            for (int c = 0; c < 2; c++) {
                int classType = c;
                double carried = lsps.stream()
                        .filter(lsp -> lsp.kind() == LspKind.PRIMARY
                                && lsp.classType() == classType
                                && lsp.path().links().contains(id))
                        .mapToDouble(Lsp::bandwidth).sum();
                int at = link;
                assertEquals(carried, IntStream.range(0, 8).mapToDouble(
                        p -> links.primary(at, classType, p)).sum(), 1e-9);
            }
        }
    }

    /** Asks for more than the heap holds, with and without a change. */
    public static final class SmallHeap {
        public static void main(String[] arguments) {
            Engine engine = new Engine(Options.builder().allowsBackups(false).build());
            int nodes = 2000;
            for (int node = 0; node < nodes; node++) {
                engine.addNode(node);
            }
            for (int node = 1; node < nodes; node++) {
                engine.addLink(2 * node, 0, node, 100);
                engine.addLink(2 * node + 1, node, 0, 100);
            }
            for (int lsp = 0; lsp < 60_000; lsp++) {
                engine.add(new Request(0, 1, 0), List.of(0, 1 + lsp % 500));
            }
            int lost = 0;
            for (Runnable tooMuch : List.<Runnable>of(
                    engine::links, () -> engine.removeNode(0), engine::links)) {
                try {
                    tooMuch.run();
                } catch (OutOfMemoryError error) {
                    lost++;
                }
            }
            System.out.println(lost + " " + engine.counts() + " " + engine.lsps());
            engine.addNode(0);
            engine.addLink(0, 0, 1, 100);
            System.out.println(engine.place(new Request(0, 1, 30)) instanceof Placement);
            engine.close();
        }
    }

    @Test
    void aHeapThatIsTooSmallLosesAnAnswerAtMost() throws Exception {
        java(List.of(JAR, codeOf(SmallHeap.class)), List.of(SmallHeap.class.getName()), "-Xmx6m",
             "-XX:+UseSerialGC", "-Djava.library.path=" + JAR.getParent());
        assertEquals("2 Counts[nodes=1999, links=0, lsps=0] []\ntrue\n", out);
    }
}
