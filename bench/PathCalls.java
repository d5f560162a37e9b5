import org.kestro.repository.TARNEX.JNITARNEX;

/** Requests without admission, timed where a Java program would make them. */
final class PathCalls {
    private PathCalls() {
    }

    /**
     * Makes the requests one after the other.
     *
     * @param took receives the nanoseconds that each has taken
     * @return the paths
     */
    static int[][] compute(JNITARNEX engine, int[] src, int[] dst, long[] took) throws Exception {
        int[][] paths = new int[src.length][];
        for (int i = 0; i < src.length; ++i) {
            long start = System.nanoTime();
            paths[i] = engine.jnicomputePath(i, src[i], dst[i], -1, -1, -1, 0, 0, 1, null, false,
                                             false);
            took[i] = System.nanoTime() - start;
        }
        return paths;
    }
}
