package org.kestro.examples;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collection;
import java.util.Comparator;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.stream.IntStream;

import org.kestro.repository.TARNEX.JNITARNEX;
import org.kestro.repository.model.exception.AddDBException;
import org.kestro.repository.model.exception.NoRouteToHostException;
import org.kestro.repository.model.exception.RoutingException;

/**
 * Places demands on a network, one at a time, keeps account of the LSPs that are in place, and
 * protects them with backups when all demands are placed.
 *
 * <p>Closing the placement ends the engine's session, which prints the trail of every refusal to
 * standard error.
 */
final class Placement implements AutoCloseable {

    /** How many levels get local backups, the most important ones; the others get a global one. */
    static final int LEVELS_WITH_LOCAL_BACKUPS = 1;

    /**
     * An LSP in place.
     *
     * @param demand the demand it serves
     * @param path names of its nodes, ingress first
     */
    record Lsp(Demand demand, List<String> path) {
    }

    /** What became of a demand. */
    sealed interface Outcome permits Placed, Refused {
    }

    /** The demand got a path; the LSPs preempted for it are gone. */
    record Placed(Lsp lsp, List<Lsp> preempted) implements Outcome {
    }

    /** The demand got no path. */
    record Refused(Demand demand, String reason) implements Outcome {
    }

    /**
     * What became of the protection of an LSP.
     *
     * @param lsp the LSP
     * @param backups all its backups, or none
     * @param reason why there are none
     */
    record Protection(Lsp lsp, List<Backup> backups, String reason) {
    }

    private final Network network;
    private final JNITARNEX engine = new JNITARNEX();
    private final Map<Integer, Lsp> inPlace = new TreeMap<>();
    private int nextBackupId;

    /**
     * Starts an engine session and hands it the network.
     *
     * @param firstBackupId id of the first backup; greater than the id of any demand
     * @throws AddDBException naming the node or link that the engine refuses, for instance for a
     *         huge id
     */
    Placement(Network network, int firstBackupId) throws AddDBException {
        this.network = network;
        nextBackupId = firstBackupId;
        startSession();
        try {
            buildNetwork();
        } catch (AddDBException | RuntimeException e) {
            close();
            throw e;
        }
    }

    private void startSession() {
        boolean colorClause = false;
        boolean allowReroute = true;
        boolean capacityClause = true;
        // The Fortz-Thorup cost keeps paths short while links are empty and leads around busy
        // links later on. It is the one criterion that looks at every class type.
        float fortz = 1;
        float[][] preemptionPenalty = new float[classes()][levels()];
        engine.jniinitTarnex(classes(), levels(), colorClause, allowReroute, capacityClause,
                             0, 0, 0, 0, 0, 0, fortz, preemptionPenalty);
        if (engine.sessId < 0) {
            throw new IllegalStateException("the engine has no free session");
        }
    }

    private void buildNetwork() throws AddDBException {
        for (Map.Entry<String, Integer> node : network.nodes().entrySet()) {
            try {
                engine.jniaddNode(node.getValue());
            } catch (AddDBException e) {
                throw new AddDBException("node " + node.getValue() + " (" + node.getKey() + ")");
            }
        }
        float[][] nothing = new float[classes()][levels()];
        for (Network.Link link : network.links()) {
            try {
                engine.jniaddLink(link.id(), 0, id(link.from()), id(link.to()), link.capacity(),
                                  nothing, nothing, nothing, nothing);
            } catch (AddDBException e) {
                throw new AddDBException("link " + link.id() + " (" + link.from() + " > "
                                         + link.to() + ")");
            }
        }
    }

    /** Computes a path for the demand, preempting less important LSPs where that is needed. */
    Outcome place(Demand demand) {
        engine.lsps = new int[0]; // the engine writes it only when it preempts something
        try {
            int[] path = engine.jnicomputePath(
                    demand.id(), id(demand.ingress()), id(demand.egress()), -1, -1, -1,
                    demand.classType(), demand.level(), demand.bandwidth(), null, true, true);
            List<Lsp> preempted = new ArrayList<>();
            for (int lost : engine.lsps) {
                preempted.add(inPlace.remove(lost));
            }
            Lsp lsp = new Lsp(demand, names(path));
            inPlace.put(demand.id(), lsp);
            return new Placed(lsp, preempted);
        } catch (NoRouteToHostException e) {
            return new Refused(demand, "no path, or none with room even after preempting less "
                               + "important LSPs");
        } catch (RoutingException e) {
            return new Refused(demand, "the LSPs to preempt cannot be determined");
        } catch (AddDBException e) {
            return new Refused(demand, "a path was found, but the LSP cannot be set up on it");
        }
    }

    /**
     * Protects all LSPs in place, the most important ones first. What no longer fits is left out:
     * backups push nothing aside.
     */
    List<Protection> protectAll() {
        return inPlace.values().stream()
                .sorted(Comparator.comparingInt(lsp -> lsp.demand().level())) // then by id
                .map(this::protect).toList();
    }

    private Protection protect(Lsp lsp) {
        boolean local = lsp.demand().level() < LEVELS_WITH_LOCAL_BACKUPS;
        int count = local ? lsp.path().size() - 1 : 1; // one for each link, or one for all
        int[] ids = IntStream.range(0, count).map(i -> nextBackupId + i).toArray();
        try {
            int[][] paths = engine.jnicomputeBackupPath(lsp.demand().id(), ids, local ? 0 : 1,
                                                        true, false);
            nextBackupId += count;
            List<Backup> backups = new ArrayList<>();
            for (int i = 0; i < paths.length; i++) {
                backups.add(new Backup(ids[i], lsp, local ? i : Backup.WHOLE_PATH,
                                       names(paths[i])));
            }
            return new Protection(lsp, backups, "");
        } catch (NoRouteToHostException e) {
            return new Protection(lsp, List.of(), local ? "no detour around one of its links has "
                                  + "the room" : "no second path without its links has the room");
        } catch (AddDBException e) {
            removeFirst(ids);
            return new Protection(lsp, List.of(), "a backup was found, but cannot be set up");
        }
    }

    /** Removes the LSPs with these ids up to the first that does not exist. */
    private void removeFirst(int[] ids) {
        try {
            for (int id : ids) {
                engine.jniremoveLSP(id);
            }
        } catch (AddDBException e) {
            // the backup that could not be set up, and none was added after it
        }
    }

    /** Prints what the engine knows about the network, on the native standard output. */
    void dump() {
        engine.jniprintTarnexDB();
    }

    /** The LSPs now in place, by ascending id; backups are not among them. */
    Collection<Lsp> inPlace() {
        return inPlace.values();
    }

    @Override
    public void close() {
        engine.jnikillTarnex();
        // The number may now be given to another engine object. A killed object must not act on
        // a stranger's session.
        engine.sessId = -1;
    }

    private List<String> names(int[] path) {
        return Arrays.stream(path).mapToObj(network::nodeName).toList();
    }

    private int id(String node) {
        return network.nodes().get(node);
    }

    private int classes() {
        return network.classes().size();
    }

    private int levels() {
        return network.levels().size();
    }
}
