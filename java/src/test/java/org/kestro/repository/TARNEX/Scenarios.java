package org.kestro.repository.TARNEX;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.stream.IntStream;

/** What the tests do to engines, here or, through {@link #main}, in a JVM of its own. */
final class Scenarios {
    private static final int[] PATH = {0, 1};

    interface Call {
        void on(JNITARNEX engine) throws Exception;
    }

    private Scenarios() {
    }

    /** A session without nodes; weights in the order of the initialisation call, the rest 0. */
    static JNITARNEX start(int classes, int levels, float... weights) {
        JNITARNEX engine = new JNITARNEX();
        float[] w = Arrays.copyOf(weights, 7);
        engine.jniinitTarnex(classes, levels, false, true, true, w[0], w[1], w[2], w[3], w[4],
                             w[5], w[6], new float[classes][levels]);
        return engine;
    }

    /** Nodes 0 to 5 and links "from-to:capacity[/capacity]", numbered from 0. */
    static JNITARNEX build(JNITARNEX engine, String links) throws Exception {
        for (int node = 5; node >= 0; node--) {
            engine.jniaddNode(node);
        }
        int id = 0;
        for (String link : links.split(" ")) {
            String[] part = link.split("[-:/]");
            link(engine, id++, Integer.parseInt(part[0]), Integer.parseInt(part[1]),
                 Float.parseFloat(part[2]), Float.parseFloat(part[part.length - 1]));
        }
        return engine;
    }

    static void link(JNITARNEX engine, int id, int src, int dst, float... cap) throws Exception {
        engine.jniaddLink(id, 77, src, dst, cap, new float[][] {{1, 2, 0}, {0.5f, 0, 0}},
                          null, null, null);
    }

    static JNITARNEX triangle() throws Exception {
        JNITARNEX engine = build(start(2, 3), "0-1:10/4 0-2:10/4 2-1:10/4 1-0:10.5/4");
        engine.jniaddLSP(4, PATH, 0, 0, 2.5f);
        return engine;
    }

    static int[] compute(JNITARNEX engine, int id, int src, int dst, int oa, int level, float bw,
                         boolean add, boolean preempt) throws Exception {
        return engine.jnicomputePath(id, src, dst, -1, -1, -1, oa, level, bw, null, add, preempt);
    }

    /** Runs a scenario; what the library prints and what this prints go to different streams. */
    public static void main(String[] arguments) throws Exception {
        switch (arguments[0]) {
            case "load" -> attempt(null, e -> System.out.println("slot " + start(1, 1).sessId));
            case "rotation" -> rotation();
            case "dump" -> dump();
            case "misuse" -> misuse();
            case "trail" -> trail();
            case "backups" -> backups();
            case "orders" -> orders();
            default -> throw new IllegalArgumentException(arguments[0]);
        }
    }

    private static void attempt(JNITARNEX engine, Call call) {
        try {
            call.on(engine);
            System.out.println("done");
        } catch (Throwable e) {
            System.out.println(e.getClass().getSimpleName() + " " + e.getMessage());
        }
    }

    /** Prints the numbers of sessions as they are given out, up to a session too many. */
    private static void rotation() {
        List<JNITARNEX> engines = new ArrayList<>(List.of(start(1, 1), start(1, 1), start(1, 1)));
        engines.get(1).jnikillTarnex();
        while (engines.size() < 130) {
            engines.add(start(1, 1)); // at last 128 are live, and the next gets no number
        }
        engines.get(7).jnikillTarnex();
        engines.add(start(1, 1));
        engines.forEach(engine -> System.out.print(engine.sessId + " "));
    }

    private static void dump() throws Exception {
        JNITARNEX engine = triangle();
        engine.jniremoveNode(4);
        engine.jniremoveNode(3);
        engine.jniaddLSP(9, PATH, 1, 0, 3);
        engine.jniaddBackupLSP(7, 4, new int[] {0, 2, 1}, 1, 0, 2.5f, true);
        engine.jniaddLSP(3, new int[] {2, 1}, 2, 1, 3);
        compute(engine, 8, 2, 1, 1, 0, 4, true, true); // preempts 3
        engine.jniprintTarnexDB();
    }

    /** Prints the network, makes every call outside the contract, prints the network again. */
    private static void misuse() throws Exception {
        JNITARNEX engine = triangle();
        engine.jniprintTarnexDB();
        for (int bad : new int[] {-1, 0, 9}) {
            misuse(engine, "nbOA", e -> init(e, bad, 1, new float[9][9]));
            misuse(engine, "nbPL", e -> init(e, 1, bad, new float[9][9]));
        }
        for (float[][] table : new float[][][] {null, {{1, 2, 3}}, {{1, 2, 3}, null},
                                                {{1, 2, 3}, {1, 2}}}) {
            misuse(engine, "reroutingScorecoef", e -> init(e, 2, 3, table));
            misuse(engine, "rbw", e -> e.jniaddLink(9, 0, 2, 0, new float[2], table, null, null,
                                                    null));
        }
        for (float[] cap : new float[][] {null, {}, {1}, {1, Float.NaN}}) {
            misuse(engine, "cap", e -> link(e, 9, 2, 0, cap));
        }
        misuse(engine, "backuplspIds", e -> e.jnicomputeBackupPath(4, null, 1, true, true));
        misuse(engine, "backuplspIds .* 1 .* 0", e -> protect(e, 4, 0));
        misuse(engine, "path", e -> e.jniaddLSP(9, null, 0, 0, 1));
        misuse(engine, "path", e -> e.jniaddBackupLSP(9, 4, null, 0, 0, 1, true));
        for (int level : new int[] {-1, 8}) {
            misuse(engine, "PL", e -> e.jniaddLSP(9, PATH, level, 0, 1));
            misuse(engine, "PL", e -> e.jniaddBackupLSP(9, 4, PATH, level, 0, 1, true));
            misuse(engine, "PL", e -> compute(e, 9, 0, 1, 0, level, 1, true, true));
        }
        for (float bw : new float[] {-1, Float.NaN, Float.POSITIVE_INFINITY}) {
            misuse(engine, "bw", e -> e.jniaddLSP(9, PATH, 0, 0, bw));
            misuse(engine, "bw", e -> e.jniaddBackupLSP(9, 4, PATH, 0, 0, bw, true));
            misuse(engine, "reservation", e -> compute(e, 9, 0, 1, 0, 0, bw, true, true));
        }
        engine.jniprintTarnexDB();
    }

    private static void init(JNITARNEX engine, int classes, int levels, float[][] coefficients) {
        engine.jniinitTarnex(classes, levels, false, true, true, 0, 0, 0, 0, 0, 0, 0,
                             coefficients);
    }

    private static void misuse(JNITARNEX engine, String argument, Call call) throws Exception {
        try {
            call.on(engine);
            System.err.println("accepted: bad " + argument);
        } catch (IllegalArgumentException e) {
            if (!e.getMessage().matches(".*\\b" + argument + "\\b.*") || engine.sessId != 0) {
                System.err.println("bad " + argument + " gives: " + e.getMessage());
            }
        }
    }

    /** Fails in every way and kills the session twice. */
    private static void trail() throws Exception {
        JNITARNEX engine = triangle();
        attempt(engine, e -> e.jniaddNode(1));
        attempt(engine, e -> link(e, 5, 1, 9, 1, 1));
        attempt(engine, e -> e.jniaddLSP(7, PATH, 0, 0, 8.5f));
        attempt(engine, e -> e.jniaddBackupLSP(8, 3, PATH, 0, 0, 1, true));
        attempt(engine, e -> e.jniaddBackupLSP(8, 4, new int[] {0, 2, 1}, 0, 0, 11, false));
        attempt(engine, e -> e.jniremoveLSP(3));
        attempt(engine, e -> e.jniremoveNode(8));
        attempt(engine, e -> e.jniremoveLink(1, 2));
        attempt(engine, e -> compute(e, 4, 0, 1, 0, 0, 1, true, true));
        attempt(engine, e -> compute(e, 9, 0, 5, 0, 0, 1, true, true));
        attempt(engine, e -> protect(e, 3, 0, 9));
        engine.jniaddLSP(6, new int[] {1}, 0, 0, 1);
        attempt(engine, e -> protect(e, 6, 1, 9));
        engine.jnikillTarnex();
        engine.jnikillTarnex();
    }

    private static void protect(JNITARNEX engine, int lsp, int type, int... ids) throws Exception {
        engine.jnicomputeBackupPath(lsp, ids, type, true, false);
    }

    /** Protects LSPs in vain: an id is in use, there is no other way, there is no link. */
    private static void backups() throws Exception {
        JNITARNEX engine = build(start(1, 3), "0-1:10 1-2:10 0-3:10 3-4:10.5 4-2:10 1-4:9");
        engine.jniaddLSP(7, new int[] {4, 2}, 0, 0, 7.5f);
        engine.jniaddLSP(5, new int[] {0, 1, 2}, 1, 0, 2.5f);
        attempt(engine, e -> protect(e, 5, 0, 20, 20));
        attempt(engine, e -> e.jniremoveLSP(20));
        attempt(engine, e -> e.jniremoveLSP(20));
        attempt(engine, e -> protect(e, 7, 0, 20));
        attempt(engine, e -> protect(e, 7, 1, 20));
        engine.jniaddLSP(6, new int[0], 0, 0, 1);
        attempt(engine, e -> protect(e, 6, 0));
    }

    /** Prints a network, adds an LSP and backups, prints it after removing those in each order. */
    private static void orders() throws Exception {
        JNITARNEX engine = build(start(1, 3), "0-1:9 1-2:9 2-3:9 0-4:9 4-2:9 4-3:9 1-4:9 2-4:9");
        engine.jniaddLSP(8, new int[] {0, 1, 2, 4, 3}, 1, 0, 0.5f);
        engine.jniaddLSP(9, new int[] {1, 4, 2, 3}, 1, 0, 0.5f);
        protect(engine, 8, 0, 11, 12, 13, 14);
        engine.jniprintTarnexDB();
        for (int code = 0; code < 2 * 256; code++) {
            int type = code / 256;
            int[] ids = {code >> 6 & 3, code >> 4 & 3, code >> 2 & 3, code & 3};
            if (IntStream.of(ids).distinct().count() == 4) {
                engine.jniaddLSP(0, new int[] {0, 1, 2, 3}, 0, 0, 2.5f);
                protect(engine, 0, type, 1, 2, 3);
                for (int id : IntStream.of(ids).filter(i -> i <= 3 - 2 * type).toArray()) {
                    engine.jniremoveLSP(id);
                }
                engine.jniprintTarnexDB();
            }
        }
    }
}
