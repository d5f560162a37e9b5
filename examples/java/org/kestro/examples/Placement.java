package org.kestro.examples;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collection;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

import org.kestro.repository.TARNEX.JNITARNEX;
import org.kestro.repository.model.exception.AddDBException;
import org.kestro.repository.model.exception.NoRouteToHostException;
import org.kestro.repository.model.exception.RoutingException;

/**
 * Places demands on a network, one at a time, and keeps account of the LSPs that are in place.
 *
 * <p>Closing the placement ends the engine's session, which prints the trail of every refusal to
 * standard error.
 */
final class Placement implements AutoCloseable {

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

    private final Network network;
    private final JNITARNEX engine = new JNITARNEX();
    private final Map<Integer, Lsp> inPlace = new TreeMap<>();

    /**
     * Starts an engine session and hands it the network.
     *
     * @throws AddDBException if the engine refuses a node or link, for instance for a huge id
     */
    Placement(Network network) throws AddDBException {
        this.network = network;
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
        for (int id : network.nodes().values()) {
            engine.jniaddNode(id);
        }
        float[][] nothing = new float[classes()][levels()];
        for (Network.Link link : network.links()) {
            engine.jniaddLink(link.id(), 0, id(link.from()), id(link.to()), link.capacity(),
                              nothing, nothing, nothing, nothing);
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
            Lsp lsp = new Lsp(demand, Arrays.stream(path).mapToObj(network::nodeName).toList());
            inPlace.put(demand.id(), lsp);
            return new Placed(lsp, preempted);
        } catch (NoRouteToHostException e) {
            return new Refused(demand, "no path has the room, whatever it preempts");
        } catch (RoutingException e) {
            return new Refused(demand, "the LSPs to preempt cannot be determined");
        } catch (AddDBException e) {
            return new Refused(demand, "a path was found, but the LSP cannot be set up on it");
        }
    }

    /** The LSPs now in place, by ascending id. */
    Collection<Lsp> inPlace() {
        return inPlace.values();
    }

    @Override
    public void close() {
        engine.jnikillTarnex();
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
