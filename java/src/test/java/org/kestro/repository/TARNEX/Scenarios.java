package org.kestro.repository.TARNEX;

import java.util.Arrays;

/** What the tests do to engines, here or, through {@link #main}, in a JVM of its own. */
final class Scenarios {
    private static final int[] PATH = {0, 1};

    interface Call {
        void on(JNITARNEX engine) throws Exception;
    }

    /** Has the fields of an engine from its parent. */
    static final class Derived extends JNITARNEX {
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
            case "dump" -> dump();
            case "trail" -> trail();
            case "backups" -> backups();
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
}
