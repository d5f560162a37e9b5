package org.kestro.examples;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * A network as written down in a file.
 *
 * @param classes names of the class types, indexed by class type
 * @param levels names of the preemption levels, most important first
 * @param nodes node ids by name, in file order
 * @param links the directed links, in file order
 */
record Network(List<String> classes, List<String> levels, Map<String, Integer> nodes,
               List<Link> links) {

    private static final int MAX_NAMES = 8; // class types, and levels, that the engine has room for

    /**
     * A directed link.
     *
     * @param id link id
     * @param from name of the node where the link starts
     * @param to name of the node where it ends
     * @param capacity Mbit/s, indexed by class type
     */
    record Link(int id, String from, String to, double[] capacity) {
    }

    /** Reads a network file; the statements are explained at the head of the example file. */
    static Network read(Path file) throws InputException {
        Network network = new Network(new ArrayList<>(), new ArrayList<>(),
                                      new LinkedHashMap<>(), new ArrayList<>());
        for (Statement statement : Statement.readAll(file)) {
            switch (statement.keyword()) {
                case "unit" -> statement.expectArguments("NAME"); // for people, as in the report
                case "classes" -> readNames(statement, network.classes);
                case "levels" -> readNames(statement, network.levels);
                case "node" -> network.addNode(statement);
                case "link" -> network.addLink(statement);
                default -> throw statement.error("unknown statement '" + statement.keyword()
                                                 + "' (unit, classes, levels, node or link)");
            }
        }
        if (network.classes.isEmpty() || network.levels.isEmpty()) {
            throw new InputException(file, 1, "the file names no classes or no levels");
        }
        return network;
    }

    private static void readNames(Statement statement, List<String> names) throws InputException {
        if (!names.isEmpty()) {
            throw statement.error("the " + statement.keyword() + " are given already");
        }
        names.addAll(statement.arguments());
        if (names.isEmpty() || names.size() > MAX_NAMES) {
            throw statement.error("expected 1 to " + MAX_NAMES + " names");
        }
        if (new HashSet<>(names).size() < names.size()) {
            throw statement.error("a name is given twice");
        }
    }

    private void addNode(Statement statement) throws InputException {
        int withCoordinates = 5; // which paths do not need
        if (statement.words().size() != withCoordinates) {
            statement.expectArguments("ID", "NAME");
        }
        int id = statement.id(1);
        if (nodes.containsValue(id)) {
            throw statement.error("there is a node " + id + " already");
        }
        if (nodes.putIfAbsent(statement.word(2), id) != null) {
            throw statement.error("there is a node called '" + statement.word(2) + "' already");
        }
    }

    private void addLink(Statement statement) throws InputException {
        if (classes.isEmpty()) {
            throw statement.error("the classes must be given before the first link");
        }
        int fixed = 4; // keyword, id and the two ends
        if (statement.words().size() != fixed + classes.size()) {
            throw statement.error("expected: link ID FROM TO and a capacity for each of the "
                                  + classes.size() + " classes");
        }
        double[] capacity = new double[classes.size()];
        for (int oa = 0; oa < capacity.length; oa++) {
            capacity[oa] = statement.bandwidth(fixed + oa);
        }
        Link link = new Link(statement.id(1), nodeName(statement, 2), nodeName(statement, 3),
                             capacity);
        if (link.from.equals(link.to)) {
            throw statement.error("the link leads from " + link.from + " to itself");
        }
        for (Link other : links) {
            if (other.id == link.id) {
                throw statement.error("there is a link " + link.id + " already");
            }
            if (other.from.equals(link.from) && other.to.equals(link.to)) {
                throw statement.error("there is a link from " + link.from + " to " + link.to
                                      + " already");
            }
        }
        links.add(link);
    }

    /** The word at a position, checked to be the name of a node. */
    String nodeName(Statement statement, int index) throws InputException {
        if (!nodes.containsKey(statement.word(index))) {
            throw statement.error("no node is called '" + statement.word(index) + "'");
        }
        return statement.word(index);
    }

    /** The name of a node that the engine returned by its id. */
    String nodeName(int id) {
        for (Map.Entry<String, Integer> node : nodes.entrySet()) {
            if (node.getValue() == id) {
                return node.getKey();
            }
        }
        throw new IllegalArgumentException("no node " + id);
    }
}
