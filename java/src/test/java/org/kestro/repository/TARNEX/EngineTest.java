package org.kestro.repository.TARNEX;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertTrue;
import static org.kestro.repository.TARNEX.Scenarios.build;
import static org.kestro.repository.TARNEX.Scenarios.compute;
import static org.kestro.repository.TARNEX.Scenarios.start;

import java.util.Arrays;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** What an engine answers to its caller. */
class EngineTest {
    private JNITARNEX engine;

    @AfterEach
    void kill() {
        engine.jnikillTarnex();
    }

    /** "routed" or the exception, then the ids in "lsps", which hold -5 as long as untouched. */
    private String outcome(Scenarios.Call call) {
        String result = "routed";
        try {
            call.on(engine);
        } catch (Exception e) {
            assertNull(e.getMessage());
            result = e.getClass().getSimpleName();
        }
        return result + " " + Arrays.toString(engine.lsps);
    }

    private boolean holds(int lsp) {
        return outcome(e -> e.jniremoveLSP(lsp)).startsWith("routed");
    }

    @Test
    void classTypesHaveCapacitiesOfTheirOwn() throws Exception {
        engine = Scenarios.triangle(); // 10 and 4 on each link
        compute(engine, 1, 2, 1, 0, 0, 10, true, false);
        compute(engine, 2, 2, 1, 1, 0, 4, true, false);
        for (int oa : new int[] {-1, 0, 1, 2, 8, Integer.MAX_VALUE}) {
            assertEquals(oa == 0 || oa == 1 ? "NoRouteToHostException []" : "routed []",
                         outcome(e -> compute(e, 3, 2, 1, oa, 0, 0.5f, false, false)));
        }
    }

    @ParameterizedTest
    @CsvSource(delimiter = '|', value = {
        // links (of capacity 9) | LSPs (of bandwidth 4) | kind | room left on 5-3 | last result
        "0-1 1-3 0-4 4-1 4-5 1-5 5-3     | 013   | 0  | 4 | [[0, 4, 5, 3], [1, 5, 3]]", // not 0-4-1
        "0-1 1-3 0-2 2-3 0-4 1-4 4-5 5-3 | 013   | 0  | 4 | [[0, 4, 5, 3], [1, 4, 5, 3]]", // shares
        "0-1 1-2 2-3 0-4 4-2 1-0 2-5 5-3 | 0123  | -1 | 4 | [[0, 4, 2], [1, 0, 4, 2], [2, 5, 3]]",
        "0-1 1-2 2-3 0-4 4-2 1-5 2-5:3 5-3 | 0123 | 2 | 8 | NoRouteToHostException", // no room
        "0-1 1-2 2-3 1-3 0-4 4-5 5-3     | 0123  | 1  | 4 | [[0, 4, 5, 3]]", // not 0-1-3
        "0-1 1-2 2-3 0-4 4-2 2-5 5-3     | 0123  | 1  | 4 | [[0, 4, 2, 5, 3]]", // again via 2
        "2-3 2-5 5-3                     | 23 23 | 0  | 0 | [[2, 5, 3]]", // one link may fail
        "0-4 1-4 0-5 1-5 5-3 3-4         | 04 14 | 0  | 0 | [[1, 5, 3, 4]]", // or one node
        "0-2 1-4 0-5 1-5 5-3 3-2 3-4     | 02 14 | 0  | 4 | [[1, 5, 3, 4]]", // but never both
    })
    void backupsAvoidNodesOrLinksAndShareWhatNoFailureNeedsTwice(
            String links, String primaries, int type, float room, String last) throws Exception {
        engine = build(start(1, 3), links.replaceAll("(-[0-9])(?!:)", "$1:9"));
        engine.jniaddLSP(9, new int[] {5, 3}, 2, 0, 1);
        engine.lsps = new int[] {-5};
        int id = 0;
        for (String path : primaries.split(" ")) {
            engine.jniaddLSP(id++, path.chars().map(c -> c - '0').toArray(), 1, 0, 4);
        }
        String[] paths = {last, last};
        for (int call = 0; call < 2 * id; call++) { // for each LSP one that leaves no trace first
            int lsp = call / 2;
            int add = call % 2;
            int[] ids = {3 * lsp + 10, 3 * lsp + 11, 3 * lsp + 12};
            String outcome = outcome(e -> paths[add] = Arrays.deepToString(
                    e.jnicomputeBackupPath(lsp, ids, type, add == 1, add == 0)));
            assertEquals((last.startsWith("No") ? last : "routed") + " [-5]", outcome);
        }
        assertEquals(last + last, paths[0] + paths[1]);
        assertTrue(holds(9));
        engine.jniaddLSP(9, new int[] {5, 3}, 2, 0, room + 1);
        assertEquals("AddDBException [-5]",
                     outcome(e -> e.jniaddLSP(8, new int[] {5, 3}, 0, 0, 0.5f)));
    }

    @ParameterizedTest
    @CsvSource({
        // which weight is set -> which of four LSPs take the direct link of capacity 30 (D) and
        // which the detour (d) over capacities 50 and 200
        "0, dDdd", "1, DDDD", "2, DdDD", "3, dddd", "4, ddDd", "5, dddD", "6, DDdd",
    })
    void eachWeightHasItsOwnIdeaOfAGoodPath(int weight, String expected) throws Exception {
        float[] weights = new float[7];
        weights[weight] = 2;
        engine = build(start(1, 1, weights), "0-2:30 0-1:50 1-2:200");
        StringBuilder ways = new StringBuilder();
        for (float bw : new float[] {5, 8, 10, 5}) {
            int[] path = compute(engine, ways.length(), 0, 2, 0, 0, bw, true, false);
            ways.append(path.length == 2 ? 'D' : 'd');
        }
        assertEquals(expected, ways.toString());
    }
}
