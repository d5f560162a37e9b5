import org.kestro.repository.TARNEX.JNITARNEX;
import org.kestro.tarnex.Engine;
import org.kestro.tarnex.Options;
import org.kestro.tarnex.Placement;
import org.kestro.tarnex.Request;

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

    /** An engine with nodes from 0 on and links from 0 on. */
    static Engine open(int nodes, int[] from, int[] to, double[] capacity) {
        Engine engine = new Engine(Options.builder().build());
        for (int node = 0; node < nodes; ++node) {
            engine.addNode(node);
        }
        for (int link = 0; link < from.length; ++link) {
            engine.addLink(link, from[link], to[link], capacity[link]);
        }
        return engine;
    }

    /**
     * Makes the same requests of an engine.
     *
     * @return the number of nodes on all paths
     */
    static int propose(Engine engine, int[] src, int[] dst, long[] took) {
        int nodes = 0;
        for (int i = 0; i < src.length; ++i) {
            Request request = new Request(src[i], dst[i], 1);
            long start = System.nanoTime();
            Placement placement = (Placement) engine.propose(request);
            took[i] = System.nanoTime() - start;
            nodes += placement.path().nodes().size();
        }
        return nodes;
    }
}
