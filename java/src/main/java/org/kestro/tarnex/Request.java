package org.kestro.tarnex;

import java.util.List;

/**
 * A primary LSP that is wanted.
 *
 * <pre>{@code new Request(0, 4, 250.0).level(2).mayPreempt(true)}</pre>
 *
 * @param ingress id of its first node
 * @param egress id of its last node
 * @param bandwidth finite, 0 or more
 * @param classType its class type, from 0
 * @param level its preemption level, 0 is the most important
 * @param mayPreempt whether LSPs of less important levels may have to give way
 * @param id id for the LSP; -1: the engine takes the next one never used
 * @param avoid ids of links that a path that is sought must not use; those that are not there are
 *        no matter
 */
public record Request(int ingress, int egress, double bandwidth, int classType, int level,
                      boolean mayPreempt, int id, List<Integer> avoid) {
    /** Takes a copy of the list. */
    public Request {
        avoid = List.copyOf(avoid);
    }

    /** A request in class type 0 at level 0 that pushes nothing aside; the engine gives the id. */
    public Request(int ingress, int egress, double bandwidth) {
        this(ingress, egress, bandwidth, 0, 0, false, -1, List.of());
    }

    /** The same in another class type. */
    public Request classType(int other) {
        return new Request(ingress, egress, bandwidth, other, level, mayPreempt, id, avoid);
    }

    /** The same at another level. */
    public Request level(int other) {
        return new Request(ingress, egress, bandwidth, classType, other, mayPreempt, id, avoid);
    }

    /** The same with or without preemption. */
    public Request mayPreempt(boolean may) {
        return new Request(ingress, egress, bandwidth, classType, level, may, id, avoid);
    }

    /** The same with an id for the LSP. */
    public Request id(int other) {
        return new Request(ingress, egress, bandwidth, classType, level, mayPreempt, other, avoid);
    }

    /** The same around some links. */
    public Request avoiding(List<Integer> links) {
        return new Request(ingress, egress, bandwidth, classType, level, mayPreempt, id, links);
    }
}
