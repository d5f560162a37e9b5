package org.kestro.tarnex;

import java.util.Objects;

/**
 * What all links of a network carry at one moment, in one array: for networks whose links are too
 * many for objects. Links are counted from 0 in the order of their ids; class types and levels are
 * 0 to 7.
 */
public final class LinkTable {
    private static final int CAPACITY = 3;
    private static final int PRIMARY = CAPACITY + Options.MAX_CLASS_TYPES;
    private static final int TABLE = Options.MAX_CLASS_TYPES * Options.MAX_LEVELS;
    private static final int STRIDE = PRIMARY + 3 * TABLE;

    private final double[] values;

    /** Takes the values over: of each link id, ends, capacities and the three tables. */
    LinkTable(double[] values) {
        this.values = values;
    }

    /** Number of links. */
    public int size() {
        return values.length / STRIDE;
    }

    /** Id of a link. */
    public int id(int link) {
        return (int) at(link, 0);
    }

    /** Id of the node where it starts. */
    public int from(int link) {
        return (int) at(link, 1);
    }

    /** Id of the node where it ends. */
    public int to(int link) {
        return (int) at(link, 2);
    }

    /** Its capacity in a class type. */
    public double capacity(int link, int classType) {
        return at(link, CAPACITY + Objects.checkIndex(classType, Options.MAX_CLASS_TYPES));
    }

    /** Reserved by primaries of a class type and level. */
    public double primary(int link, int classType, int level) {
        return of(0, link, classType, level);
    }

    /** What the largest need over all single failures adds. */
    public double shared(int link, int classType, int level) {
        return of(1, link, classType, level);
    }

    /** Reserved altogether. */
    public double total(int link, int classType, int level) {
        return of(2, link, classType, level);
    }

    private double of(int table, int link, int classType, int level) {
        return at(link, PRIMARY + table * TABLE
                        + Objects.checkIndex(classType, Options.MAX_CLASS_TYPES)
                          * Options.MAX_LEVELS
                        + Objects.checkIndex(level, Options.MAX_LEVELS));
    }

    private double at(int link, int offset) {
        return values[Objects.checkIndex(link, size()) * STRIDE + offset];
    }
}
