package org.kestro.examples;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;

/**
 * A request for one LSP.
 *
 * @param id id of the LSP
 * @param ingress name of the first node
 * @param egress name of the last node
 * @param classType class type, an index into the classes of the network
 * @param level preemption level, an index into the levels of the network; 0 is the most important
 * @param bandwidth Mbit/s
 */
record Demand(int id, String ingress, String egress, int classType, int level, double bandwidth) {

    /** Reads the demands of several files, in order. */
    static List<Demand> readAll(List<Path> files, Network network)
            throws InputException {
        List<Demand> demands = new ArrayList<>();
        Set<Integer> ids = new HashSet<>();
        for (Path file : files) {
            for (Statement statement : Statement.readAll(file)) {
                Demand demand = read(statement, network);
                if (!ids.add(demand.id)) {
                    throw statement.error("there is a demand " + demand.id + " already");
                }
                demands.add(demand);
            }
        }
        return demands;
    }

    private static Demand read(Statement statement, Network network) throws InputException {
        if (!statement.keyword().equals("demand")) {
            throw statement.error("unknown statement '" + statement.keyword() + "' (demand)");
        }
        statement.expectArguments("ID", "INGRESS", "EGRESS", "CLASS", "LEVEL", "BANDWIDTH");
        Demand demand = new Demand(statement.id(1), network.nodeName(statement, 2),
                                   network.nodeName(statement, 3),
                                   statement.oneOf(network.classes(), 4, "class"),
                                   statement.oneOf(network.levels(), 5, "level"),
                                   statement.bandwidth(6));
        if (demand.ingress.equals(demand.egress)) {
            throw statement.error("the demand leads from " + demand.ingress + " to itself");
        }
        return demand;
    }
}
